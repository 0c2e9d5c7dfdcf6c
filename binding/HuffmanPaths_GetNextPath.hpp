#pragma once
// getNextPath(object) returns the components of the next path of the walk.

#include "binding/HuffmanPathsMethodInfo.hpp"

namespace binding {

class HuffmanPaths_GetNextPath : public HuffmanPathsMethodInfo {
public:
    HuffmanPaths_GetNextPath();

    const char* getMethodName() const override { return "getNextPath"; }

private:
    void run(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
             const kxArray* const* inputs) override;
};

}  // namespace binding
