// Counted integer and byte vectors. Any bytes and width tags go to the forms that know the end; the
// iterator forms, which trust their bytes, get what was just packed.

#include "compressedpaths/sixpacks/PackedIntegers.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"

namespace sixpacks = compressedpaths::sixpacks;
using fuzzing::InputScript;
using fuzzing::require;
using fuzzing::succeeds;
using sixpacks::ByteReader;
using sixpacks::InvalidUintConversionException;
using sixpacks::PackedSizeT;
using sixpacks::PrematureEndException;

namespace {

using Bytes = std::vector<std::uint8_t>;

/// True if reading went as far as `consumed` says.
bool isBeginOf(const Bytes& consumed, const Bytes& bytes, const ByteReader& reader) {
    const auto passed = static_cast<std::size_t>(reader.position() - bytes.data());
    return consumed == Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(passed));
}

void readAnything(PackedSizeT elementWidth, PackedSizeT countWidth, const Bytes& bytes) {
    ByteReader reader(bytes);
    std::vector<std::size_t> values;
    if (succeeds<PrematureEndException, InvalidUintConversionException>(
            [&] { unpackSizeTVector(values, reader, elementWidth, countWidth); })) {
        Bytes again;
        packSizeTVector(values, again, elementWidth, countWidth);
        require(isBeginOf(again, bytes, reader), "an integer vector packs as it was");
    } else {
        require(values.empty(), "nothing of a refused integer vector");
    }

    reader = ByteReader(bytes);
    Bytes content;
    if (succeeds<PrematureEndException, InvalidUintConversionException>(
            [&] { unpackVector(content, reader, countWidth); })) {
        Bytes again;
        packVector(content, again, countWidth);
        require(isBeginOf(again, bytes, reader), "a byte vector packs as it was");
    } else {
        require(content.empty(), "nothing of a refused byte vector");
    }
}

std::size_t cutTo(PackedSizeT width, std::size_t value) {
    const unsigned bits = 8 * sixpacks::byteSizeOf(width);
    return bits == 64 ? value : value & ((std::size_t{1} << bits) - 1);
}

void packAndReadBack(InputScript& script) {
    const auto elementWidth = static_cast<PackedSizeT>(script.byte() % 4);
    const auto wishedCountWidth = static_cast<PackedSizeT>(script.byte() % 4);
    std::vector<std::size_t> values;
    while (!script.isAtEnd()) values.push_back(script.integer(8));
    const PackedSizeT countWidth = std::max(wishedCountWidth, sixpacks::widthOf(values.size()));

    Bytes bytes;
    packSizeTVector(values, bytes, elementWidth, countWidth);
    std::vector<std::size_t> back;
    auto in = bytes.begin();
    unpackSizeTVector(back, in, elementWidth, countWidth);
    for (std::size_t& value : values) value = cutTo(elementWidth, value);
    require(back == values && in == bytes.end(), "an integer vector reads as it was packed");

    Bytes wrapped;
    const PackedSizeT lengthWidth =
        std::max(wishedCountWidth, sixpacks::packPackedSizeT(bytes.size(), wrapped));
    packVector(bytes, wrapped, lengthWidth);
    Bytes content;
    in = wrapped.begin() + 1;
    unpackVector(content, in, lengthWidth);
    require(content == bytes && in == wrapped.end(), "a byte vector reads as it was packed");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    if (script.byte() % 2 == 0) {
        packAndReadBack(script);
        return 0;
    }
    const auto elementWidth = static_cast<PackedSizeT>(script.byte());
    const auto countWidth = static_cast<PackedSizeT>(script.byte());
    readAnything(elementWidth, countWidth, script.rest());
    return 0;
}
