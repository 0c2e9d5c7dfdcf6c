#pragma once
// getPaths(object, partitions) returns the folders of the numbered paths and the files in each.
// getPaths(object, partitions, filesep) returns whole paths.
//
// Paths are joined with nothing between the first component and the second: the first carries the
// separators that follow it.

#include "binding/HuffmanPathsMethodInfo.hpp"

namespace binding {

class HuffmanPaths_GetPaths : public HuffmanPathsMethodInfo {
public:
    HuffmanPaths_GetPaths();

    const char* getMethodName() const override { return "getPaths"; }

private:
    void run(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
             const kxArray* const* inputs) override;
};

}  // namespace binding
