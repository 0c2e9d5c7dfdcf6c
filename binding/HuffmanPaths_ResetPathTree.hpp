#pragma once
// reset(object) starts the walk, also anew.

#include "binding/HuffmanPathsMethodInfo.hpp"

namespace binding {

class HuffmanPaths_ResetPathTree : public HuffmanPathsMethodInfo {
public:
    HuffmanPaths_ResetPathTree();

    const char* getMethodName() const override { return "reset"; }

private:
    void run(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
             const kxArray* const* inputs) override;
};

}  // namespace binding
