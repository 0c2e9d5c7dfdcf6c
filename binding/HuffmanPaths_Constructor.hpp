#pragma once
// The constructor fills a new object. The first argument says from what:
//
//     "frequencies", characters, frequencies   the code alone
//     "files", {folders..., file lists...}     the code for the characters that occur there
//     "copy", object                           code and paths of another object
//     "tree", tree string, bytes, frequencies  what "serialize" returned
//
// Anything else, fewer arguments included, leaves the object empty.

#include "binding/HuffmanPathsMethodInfo.hpp"

namespace binding {

class HuffmanPaths_Constructor : public HuffmanPathsMethodInfo {
public:
    HuffmanPaths_Constructor();

    const char* getMethodName() const override { return "HuffmanPaths"; }

private:
    void run(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
             const kxArray* const* inputs) override;
};

}  // namespace binding
