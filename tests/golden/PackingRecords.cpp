// Records about bytes: bit vectors, integers and vectors of them, zlib blocks.

#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"
#include "tests/golden/GoldenRecords.hpp"
#include "tests/golden/Throwing.hpp"

namespace compressedpaths::golden {
namespace {

using sixpacks::PackedSizeT;

PackedSizeT widthOf(const Json& value) {
    const std::uint64_t tag = integerOf(value);
    if (tag > 0xFF) throw UnreadableRecord("not a width tag");
    return static_cast<PackedSizeT>(tag);
}

/// Runs a reader of bytes at "position" and compares where it leaves the iterator.
template <class Read>
void expectReading(Fields& record, Bytes& bytes, Read read) {
    auto in = bytes.begin() + static_cast<std::ptrdiff_t>(integerOf(record["position"]));
    EXPECT_EQ(thrownBy([&] { read(in); }), recordedThrow(record));
    EXPECT_EQ(static_cast<std::uint64_t>(in - bytes.begin()), integerOf(record["position_after"]));
}

void runBitPack(Fields& record) {
    Bytes out = record.orEmpty("before", bytesOf);
    sixpacks::boolVecToBytes(out, bitsOf(record["bits"]));
    EXPECT_EQ(hexOf(out), textOf(record["after"]));
}

void runBitUnpack(Fields& record) {
    std::vector<bool> bits = record.orEmpty("before", bitsOf);
    sixpacks::bytesToBoolVec(bytesOf(record["bytes"]), bits);
    EXPECT_EQ(bitTextOf(bits), textOf(record["after"]));
}

void runPackedSize(Fields& record) {
    Bytes out = record.orEmpty("before", bytesOf);
    EXPECT_EQ(sixpacks::packPackedSizeT(integerOf(record["value"]), out), widthOf(record["tag"]));
    EXPECT_EQ(hexOf(out), textOf(record["after"]));
}

void runPacker(Fields& record) {
    const auto packer = sixpacks::makePackerOfWidth(widthOf(record["tag"]));
    const std::vector<std::size_t> values = trackOf(record["values"]);
    Bytes bytes;
    packer->packValues(values, bytes);
    EXPECT_EQ(hexOf(bytes), textOf(record["bytes"]));

    std::vector<std::size_t> unpacked;
    auto in = bytes.begin();
    packer->unpackValues(unpacked, in, values.size());
    EXPECT_EQ(unpacked, trackOf(record["unpacked"]));
    EXPECT_EQ(in, bytes.end());
}

void runPackerError(Fields& record) {
    const PackedSizeT tag = widthOf(record["tag"]);
    const auto expected = recordedThrow(record);
    ASSERT_TRUE(expected);
    EXPECT_EQ(thrownBy([tag] { sixpacks::makePackerOfWidth(tag); }), expected);
}

void runSizeVectorPack(Fields& record) {
    Bytes out = record.orEmpty("before", bytesOf);
    const std::vector<std::size_t> values = trackOf(record["values"]);
    const PackedSizeT elementWidth = widthOf(record["element_width"]);
    const PackedSizeT countWidth = widthOf(record["count_width"]);
    EXPECT_EQ(thrownBy([&] { sixpacks::packSizeTVector(values, out, elementWidth, countWidth); }),
              recordedThrow(record));
    EXPECT_EQ(hexOf(out), textOf(record["after"]));
}

void runSizeVectorUnpack(Fields& record) {
    Bytes bytes = bytesOf(record["bytes"]);
    std::vector<std::size_t> values = record.orEmpty("before", trackOf);
    const PackedSizeT elementWidth = widthOf(record["element_width"]);
    const PackedSizeT countWidth = widthOf(record["count_width"]);
    expectReading(record, bytes, [&](Bytes::iterator& in) {
        sixpacks::unpackSizeTVector(values, in, elementWidth, countWidth);
    });
    EXPECT_EQ(values, trackOf(record["values"]));
}

void runByteVectorPack(Fields& record) {
    Bytes out = record.orEmpty("before", bytesOf);
    Bytes bytes = bytesOf(record["bytes"]);
    const PackedSizeT width = widthOf(record["width"]);
    EXPECT_EQ(thrownBy([&] { sixpacks::packVector(bytes, out, width); }), recordedThrow(record));
    EXPECT_EQ(hexOf(out), textOf(record["after"]));
}

void runByteVectorUnpack(Fields& record) {
    Bytes input = bytesOf(record["input"]);
    Bytes bytes = record.orEmpty("before", bytesOf);
    const PackedSizeT width = widthOf(record["width"]);
    expectReading(record, input,
                  [&](Bytes::iterator& in) { sixpacks::unpackVector(bytes, in, width); });
    EXPECT_EQ(hexOf(bytes), textOf(record["bytes"]));
}

void runBlockCompress(Fields& record) {
    Bytes bytes = bytesOf(record["bytes"]);
    EXPECT_EQ(hexOf(sixpacks::compressUint8(bytes)), textOf(record["packed"]));
    EXPECT_EQ(hexOf(bytes), textOf(record["bytes"]));
}

void runBlockDecompress(Fields& record) {
    Bytes input = bytesOf(record["input"]);
    const auto begin = input.begin() + static_cast<std::ptrdiff_t>(integerOf(record["position"]));
    EXPECT_EQ(hexOf(sixpacks::decompressUint8(begin, integerOf(record["compressed_length"]),
                                              integerOf(record["uncompressed_length"]))),
              textOf(record["bytes"]));
}

}  // namespace

RecordKinds packingKinds() {
    return {{"bitpack", runBitPack},
            {"bitunpack", runBitUnpack},
            {"packed_size", runPackedSize},
            {"packer", runPacker},
            {"packer_error", runPackerError},
            {"size_vector_pack", runSizeVectorPack},
            {"size_vector_unpack", runSizeVectorUnpack},
            {"byte_vector_pack", runByteVectorPack},
            {"byte_vector_unpack", runByteVectorUnpack},
            {"zblock_compress", runBlockCompress},
            {"zblock_decompress", runBlockDecompress}};
}

}  // namespace compressedpaths::golden
