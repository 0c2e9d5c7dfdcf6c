// Any bytes as a packed bit vector: each bit is where docs/format.md says, packing gives back what
// was well-formed, and packing and unpacking are inverse.

#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"

using compressedpaths::sixpacks::boolVecToBytes;
using compressedpaths::sixpacks::bytesToBoolVec;
using fuzzing::require;

namespace {

using Bytes = std::vector<std::uint8_t>;

std::size_t statedBitCount(const Bytes& packed) {
    return packed.size() < 2 ? 0 : (packed.size() - 2) * 8 + packed.back();
}

bool bitAt(const Bytes& packed, std::size_t index) {
    const std::size_t position = std::min(index / 8, packed.size() - 2);
    const std::size_t bit = index - position * 8;
    return bit < 8 && (packed[position] >> bit & 1) != 0;
}

bool isWellFormed(const Bytes& packed) {
    if (packed.empty()) return true;
    return statedBitCount(packed) > 0 && packed.back() < 8 &&
           packed[packed.size() - 2] >> packed.back() == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Bytes packed = fuzzing::InputScript(data, size).rest();
    std::vector<bool> bits;
    bytesToBoolVec(packed, bits);
    require(bits.size() == statedBitCount(packed), "as many bits as stated");
    for (std::size_t i = 0; i < bits.size(); ++i)
        require(bits[i] == bitAt(packed, i), "each bit in its place");

    Bytes again;
    boolVecToBytes(again, bits);
    require(isWellFormed(again), "packing is well-formed");
    if (isWellFormed(packed)) require(again == packed, "packing is inverse to unpacking");

    std::vector<bool> bitsAgain;
    bytesToBoolVec(again, bitsAgain);
    require(bitsAgain == bits, "unpacking is inverse to packing");
    return 0;
}
