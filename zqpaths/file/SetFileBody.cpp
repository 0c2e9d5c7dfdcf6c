#include "zqpaths/file/SetFileBody.hpp"

#include <algorithm>
#include <cassert>
#include <utility>
#include <vector>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

/// A small set grows by some pages each time. It would be written anew each second time, which
/// takes longer than an addition; so it is each tenth time or so.
constexpr std::uint64_t kLeastDead = std::uint64_t{64} << 10;

constexpr std::size_t kCopiedAtOnce = std::size_t{1} << 20;

}  // namespace

SetFileBody::SetFileBody(SystemFile& file, std::uint64_t end, Directory directory)
    : file_(file), end_(end), directory_(std::move(directory)) {}

void SetFileBody::dropFrom(std::size_t first) noexcept {
    assert(first <= directory_.segments.size());
    directory_.segments.resize(first);
}

void SetFileBody::append(const SegmentBytes& segment) {
    const std::uint64_t offset = alignedUp(end_, kPageSize);
    directory_.segments.push_back({segment.form, offset, segment.bytes.size(), segment.pathCount,
                                   segment.textSize, segment.treeStringSize, sumOf(segment.bytes)});
    try {
        // What is skipped lies past the end of the file, and the system fills it with zeros.
        file_.writeAt(offset, segment.bytes);
    } catch (const Error&) {
        directory_.segments.pop_back();
        throw;
    }
    end_ = offset + segment.bytes.size();
}

void SetFileBody::put(const BlockBytes& block, std::optional<BlockEntry>& entry) {
    entry.reset();
    if (block.bytes.empty()) return;
    const std::uint64_t offset = alignedUp(end_, kBlockAlignment);
    file_.writeAt(offset, block.bytes);
    entry = {offset, block.bytes.size(), block.count, sumOf(block.bytes)};
    end_ = offset + block.bytes.size();
}

void SetFileBody::copyAll(const SystemFile& from, const Directory& directory) {
    for (SegmentEntry entry : directory.segments) {
        entry.offset = copy(from, {entry.offset, entry.offset + entry.size}, kPageSize);
        directory_.segments.push_back(entry);
    }
    copyBlock(from, directory.gone, directory_.gone);
    copyBlock(from, directory.scans, directory_.scans);
}

void SetFileBody::copyBlock(const SystemFile& from, const std::optional<BlockEntry>& there,
                            std::optional<BlockEntry>& copied) {
    copied = there;
    if (copied)
        copied->offset = copy(from, {there->offset, there->offset + there->size}, kBlockAlignment);
}

/// Appends bytes of another file and returns where they are.
std::uint64_t SetFileBody::copy(const SystemFile& from, Extent bytes, std::uint64_t alignment) {
    const std::uint64_t size = bytes.end - bytes.begin;
    const std::uint64_t offset = alignedUp(end_, alignment);
    std::vector<std::byte> buffer(std::min<std::uint64_t>(size, kCopiedAtOnce));
    for (std::uint64_t done = 0; done < size;) {
        const auto wanted =
            std::span(buffer).first(std::min<std::uint64_t>(size - done, buffer.size()));
        const std::size_t count = from.readAt(bytes.begin + done, wanted);
        requireSize(done + count, done + wanted.size());
        file_.writeAt(offset + done, wanted);
        done += count;
    }
    end_ = offset + size;
    return offset;
}

Superblock SetFileBody::finish(std::uint64_t sequence) {
    std::vector<std::byte> bytes = encodeDirectory(directory_);
    Superblock superblock{sequence, alignedUp(end_, kBlockAlignment), bytes.size(), sumOf(bytes),
                          0};
    superblock.end = superblock.directoryOffset + bytes.size() + kSuperblockSize;
    const auto closing = encodeSuperblock(superblock);
    bytes.insert(bytes.end(), closing.begin(), closing.end());
    file_.writeAt(superblock.directoryOffset, bytes);
    end_ = superblock.end;
    return superblock;
}

bool SetFileBody::isMostlyDead() const noexcept {
    std::uint64_t live = kPageSize;
    for (const SegmentEntry& entry : directory_.segments) live += alignedUp(entry.size, kPageSize);
    for (const auto& block : {directory_.gone, directory_.scans})
        if (block) live += alignedUp(block->size, kBlockAlignment);
    const std::uint64_t dead = std::max(end_, live) - live;
    return dead > live && dead > kLeastDead;
}

}  // namespace zqpaths
