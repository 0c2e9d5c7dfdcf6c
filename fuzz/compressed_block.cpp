// zlib blocks: what is compressed comes back, and anything else gives at most what was asked for.

#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"

namespace sixpacks = compressedpaths::sixpacks;
using fuzzing::InputScript;
using fuzzing::require;

namespace {

using Bytes = std::vector<std::uint8_t>;

void compressAndInflate(Bytes bytes, std::size_t slack) {
    Bytes block = sixpacks::compressUint8(bytes);
    require(bytes.size() / sixpacks::kMaxExpansion <= block.size(), "no stream expands further");
    const Bytes back = sixpacks::decompressUint8(block.begin(), block.size(), bytes.size() + slack);
    require(back == bytes, "a block inflates to what it was made of");
}

void inflateAnything(Bytes block, std::uint64_t stated) {
    const std::uint64_t length = stated % ((block.size() + 1) * sixpacks::kMaxExpansion);
    const Bytes inflated = sixpacks::decompressUint8(block.begin(), block.size(), length);
    require(inflated.size() <= length, "no more bytes than stated");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    const bool isBlock = script.byte() % 2 == 1;
    const std::uint64_t length = script.integer(3);
    if (isBlock)
        inflateAnything(script.rest(), length);
    else
        compressAndInflate(script.rest(), length % 0x10000);
    return 0;
}
