// Unpacking gives back what was packed.

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"

namespace compressedpaths::sixpacks {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Sizes = std::vector<std::size_t>;

/// Values of all widths, not only of the widest.
rc::Gen<Sizes> sizes() {
    return rc::gen::mapcat(rc::gen::element(8, 16, 32, 64), [](int bits) {
        const auto value = rc::gen::map(
            rc::gen::arbitrary<std::uint64_t>(),
            [=](std::uint64_t all) { return static_cast<std::size_t>(all >> (64 - bits)); });
        return rc::gen::container<Sizes>(value);
    });
}

std::size_t largestOf(const Sizes& values) {
    return values.empty() ? 0 : *std::max_element(values.begin(), values.end());
}

RC_GTEST_PROP(PackingProperties, bitsComeBack, (const std::vector<bool>& bits)) {
    Bytes bytes;
    boolVecToBytes(bytes, bits);
    RC_ASSERT(bytes.size() == (bits.empty() ? 0 : bits.size() / 8 + 2));
    std::vector<bool> back;
    bytesToBoolVec(bytes, back);
    RC_ASSERT(back == bits);
}

RC_GTEST_PROP(PackingProperties, sizesComeBackThroughTheirWidths, ()) {
    const Sizes values = *sizes();
    const PackedSizeT elementWidth = widthOf(largestOf(values));
    const PackedSizeT countWidth = std::max(
        widthOf(values.size()), *rc::gen::element(PackedSizeT::Uint8, PackedSizeT::Uint16,
                                                  PackedSizeT::Uint32, PackedSizeT::Uint64));
    Bytes bytes;
    packSizeTVector(values, bytes, elementWidth, countWidth);
    RC_ASSERT(bytes.size() == byteSizeOf(countWidth) + values.size() * byteSizeOf(elementWidth));

    Sizes trusted;
    auto in = bytes.begin();
    unpackSizeTVector(trusted, in, elementWidth, countWidth);
    RC_ASSERT(trusted == values);
    RC_ASSERT((in == bytes.end()));

    Sizes checked;
    ByteReader reader(bytes);
    unpackSizeTVector(checked, reader, elementWidth, countWidth);
    RC_ASSERT(checked == values);
    RC_ASSERT(reader.isAtEnd());
}

RC_GTEST_PROP(PackingProperties, bytesComeBack, (const Bytes& original)) {
    Bytes data = original;
    Bytes bytes;
    packVector(data, bytes, PackedSizeT::Uint32);
    RC_ASSERT(bytes.size() == 4 + original.size());
    Bytes trusted;
    auto in = bytes.begin();
    unpackVector(trusted, in, PackedSizeT::Uint32);
    RC_ASSERT(trusted == original);
    Bytes checked;
    ByteReader reader(bytes);
    unpackVector(checked, reader, PackedSizeT::Uint32);
    RC_ASSERT(checked == original);
}

RC_GTEST_PROP(PackingProperties, blocksGiveBackWhatTheyHold, (const Bytes& original)) {
    Bytes data = original;
    Bytes block = compressUint8(data);
    RC_ASSERT(decompressUint8(block.begin(), block.size(), original.size()) == original);
}

RC_GTEST_PROP(PackingProperties, theWidthOfAValueIsTheSmallestThatHoldsIt, ()) {
    for (const std::size_t value : *sizes()) {
        const unsigned bits = 8 * byteSizeOf(widthOf(value));
        const std::size_t largest = ~std::size_t{0} >> (64 - bits);
        const std::size_t largestOfHalf = bits == 8 ? 0 : ~std::size_t{0} >> (64 - bits / 2);
        RC_ASSERT(value <= largest);
        RC_ASSERT((bits == 8 || value > largestOfHalf));
    }
}

}  // namespace
}  // namespace compressedpaths::sixpacks
