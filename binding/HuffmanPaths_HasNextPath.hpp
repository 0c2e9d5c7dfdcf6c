#pragma once
// hasNextPath(object) tells whether the walk has another path.

#include "binding/HuffmanPathsMethodInfo.hpp"

namespace binding {

class HuffmanPaths_HasNextPath : public HuffmanPathsMethodInfo {
public:
    HuffmanPaths_HasNextPath();

    const char* getMethodName() const override { return "hasNextPath"; }

private:
    void run(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
             const kxArray* const* inputs) override;
};

}  // namespace binding
