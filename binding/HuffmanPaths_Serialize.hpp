#pragma once
// serialize(object) returns the tree string and, if two outputs are wanted, the saved form of the
// path set as bytes.

#include "binding/HuffmanPathsMethodInfo.hpp"

namespace binding {

class HuffmanPaths_Serialize : public HuffmanPathsMethodInfo {
public:
    HuffmanPaths_Serialize();

    const char* getMethodName() const override { return "serialize"; }

private:
    void run(std::int32_t& outputCount, kxArray** outputs, std::int32_t inputCount,
             const kxArray* const* inputs) override;
};

}  // namespace binding
