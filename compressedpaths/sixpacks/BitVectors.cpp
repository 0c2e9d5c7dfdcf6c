#include "compressedpaths/sixpacks/BitVectors.hpp"

#include <cstddef>

namespace compressedpaths::sixpacks {

void boolVecToBytes(std::vector<std::uint8_t>& out, const std::vector<bool>& bits) {
    if (bits.empty()) return;

    out.reserve(out.size() + bits.size() / 8 + 2);
    std::uint8_t partial = 0;
    std::uint8_t bitCount = 0;  // in partial, 0 to 7
    for (const bool bit : bits) {
        partial = static_cast<std::uint8_t>(partial | static_cast<unsigned>(bit) << bitCount);
        if (++bitCount < 8) continue;
        out.push_back(partial);
        partial = 0;
        bitCount = 0;
    }
    out.push_back(partial);
    out.push_back(bitCount);
}

void bytesToBoolVec(const std::vector<std::uint8_t>& in, std::vector<bool>& bits) {
    if (in.size() < 2) return;

    const std::size_t partialPosition = in.size() - 2;
    bits.reserve(bits.size() + partialPosition * 8 + in.back());
    for (std::size_t position = 0; position <= partialPosition; ++position) {
        const unsigned bitCount = position == partialPosition ? in.back() : 8;
        for (unsigned bit = 0; bit < bitCount; ++bit)
            bits.push_back(bit < 8 && (in[position] >> bit & 1) != 0);
    }
}

}  // namespace compressedpaths::sixpacks
