#pragma once
// addPaths(object, folderpaths, files) adds folders with the files in them, in the order given:
// folderpaths{i} are the components of folder i, files{i} the names of its files.

#include "binding/HuffmanPathsMethodInfo.hpp"

namespace binding {

class HuffmanPaths_AddPaths : public HuffmanPathsMethodInfo {
public:
    HuffmanPaths_AddPaths();

    const char* getMethodName() const override { return "addPaths"; }

private:
    void run(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
             const kxArray* const* inputs) override;
};

}  // namespace binding
