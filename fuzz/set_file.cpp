// Any bytes as a set file: header, superblocks, directory and blocks. What is wrong is refused;
// what is not lies in the file, is in proportion to it, and comes back when it is written.
//
// The first byte says whether the sums are put right, which chance would hardly do, and whether the
// input stands for the page of the header and what follows it, without the zeros between.

#include <algorithm>
#include <cstring>

#include "fuzz/Require.hpp"
#include "tests/support/SetFileSums.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/directory/ScanRecord.hpp"
#include "zqpaths/set/GonePaths.hpp"

using namespace zqpaths;
using fuzzing::require;
using fuzzing::succeeds;

namespace {

using FileBytes = std::vector<std::byte>;

/// The input as it is, or with its parts where a file has them: the header, two superblocks, and
/// the rest from the second page on.
FileBytes fileOf(std::span<const std::uint8_t> input, bool isShort) {
    const auto bytes = std::as_bytes(input);
    if (!isShort) return {bytes.begin(), bytes.end()};
    FileBytes file(kPageSize);
    auto left = bytes;
    const auto put = [&](std::size_t offset, std::size_t size) {
        const auto part = left.first(std::min(size, left.size()));
        std::copy(part.begin(), part.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
        left = left.subspan(part.size());
    };
    put(0, kHeaderSize);
    for (const std::size_t offset : kSuperblockOffsets) put(offset, kSuperblockSize);
    file.insert(file.end(), left.begin(), left.end());
    return file;
}

std::span<const std::byte> bytesOf(const BlockEntry& block, const FileBytes& file) {
    require(block.offset >= kPageSize && block.offset % kBlockAlignment == 0 &&
                block.offset <= file.size() && block.size <= file.size() - block.offset,
            "a block lies in the file");
    return std::span(file).subspan(block.offset, block.size);
}

void checkGone(const BlockEntry& block, std::uint64_t pathCount, const FileBytes& file) {
    const GonePaths gone(bytesOf(block, file), block.count, pathCount);
    for (const std::uint64_t place : {std::uint64_t{0}, block.count / 2, block.count - 1})
        succeeds<Error>([&] {
            const std::uint64_t number = gone.goneNumber(place);
            require(number >= 1 && number <= pathCount, "the set has a path that is gone");
        });
    if (!succeeds<Error>([&] { gone.verify(); })) return;
    for (std::size_t i = 0; i < gone.runCount(); ++i)
        require(gone.has(gone[i].first) && gone.has(gone[i].last), "what is in a run is gone");
    GoneMarks marks;
    marks.markPresent(gone[0].first);
    require(marks.appliedTo(gone).goneCount == block.count - 1, "a mark is taken back");
}

void checkScans(const BlockEntry& block, const FileBytes& file) {
    const auto record = bytesOf(block, file);
    succeeds<Error>([&] {
        require(decodeScans(record).size() == splitScans(record).size(), "each scan is read");
    });
}

void check(const CommittedState& state, const FileBytes& file) {
    require(state.superblock.end <= file.size(), "what is committed lies in the file");
    require(state.directory.segments.size() * kPageSize <= file.size(),
            "there are no more segments than pages");
    for (const SegmentEntry& entry : state.directory.segments)
        require(entry.offset >= kPageSize && entry.offset % kPageSize == 0 &&
                    entry.offset <= file.size() && entry.size <= file.size() - entry.offset,
                "a segment lies in the file");
    const Directory& directory = state.directory;
    if (directory.gone) checkGone(*directory.gone, directory.pathCount(), file);
    if (directory.scans) checkScans(*directory.scans, file);
    require(decodeSuperblock(encodeSuperblock(state.superblock)) == state.superblock,
            "a superblock comes back");
    require(decodeHeader(encodeHeader(state.header)) == state.header, "a header comes back");

    const FileBytes encoded = encodeDirectory(state.directory);
    Superblock superblock = state.superblock;
    superblock.directorySize = encoded.size();
    superblock.directorySum = sumOf(encoded);
    superblock.end = superblock.directoryOffset + encoded.size() + kSuperblockSize;
    FileBytes again = file;
    again.resize(std::max(again.size(), superblock.end));
    std::copy(encoded.begin(), encoded.end(),
              again.begin() + static_cast<std::ptrdiff_t>(superblock.directoryOffset));
    require(decodeDirectory(again, superblock) == state.directory, "a directory comes back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    FileBytes file = fileOf({data + 1, size - 1}, data[0] % 4 >= 2);
    if (data[0] % 2 == 1) putSumsRight(file);
    const auto firstPage = std::span(file).first(std::min<std::size_t>(file.size(), kPageSize));
    succeeds<Error>([&] { check(committedState(firstPage, file), file); });
    return 0;
}
