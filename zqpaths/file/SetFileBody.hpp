#pragma once
// SetFileBody is what follows the header of a set file while it is written: segments, blocks,
// and the directory that ends them.
//
//     SetFileBody body(file, kPageSize, Directory{});
//     body.append(segment);
//     const Superblock superblock = body.finish(1);  // what the header has to say of it
//
// Threads: belongs to one thread at a time.

#include <cstdint>
#include <optional>

#include "zqpaths/file/SetFileLayout.hpp"
#include "zqpaths/file/SetFileWriter.hpp"
#include "zqpaths/file/SystemFile.hpp"

namespace zqpaths {

class SetFileBody {
public:
    /// Writes from `end` on; what stands there already is not kept.
    SetFileBody(SystemFile& file, std::uint64_t end, Directory directory);

    const Directory& directory() const noexcept { return directory_; }
    std::uint64_t end() const noexcept { return end_; }

    /// Takes the segments from `first` on out of the directory.
    void dropFrom(std::size_t first) noexcept;

    /// Throws Error kNoSpace, kSystem; nothing counts then that was written.
    void append(const SegmentBytes& segment);

    /// Puts a block in the place of the one that there may be; one without bytes takes that away.
    /// Throws Error as append does.
    void putGone(const BlockBytes& block) { put(block, directory_.gone); }
    void putScans(const BlockBytes& block) { put(block, directory_.scans); }

    /// Appends all segments and blocks that a directory lists of another file. Throws Error as
    /// append does.
    void copyAll(const SystemFile& from, const Directory& directory);

    /// Writes the directory, and the superblock that names it, once more at its end. Throws Error
    /// kNoSpace, kSystem.
    Superblock finish(std::uint64_t sequence);

    /// True if the file has more bytes that nothing uses any more than others, and enough of
    /// them for it to be worth while to write it anew.
    bool isMostlyDead() const noexcept;

private:
    void put(const BlockBytes& block, std::optional<BlockEntry>& entry);
    std::uint64_t copy(const SystemFile& from, Extent bytes, std::uint64_t alignment);
    void copyBlock(const SystemFile& from, const std::optional<BlockEntry>& there,
                   std::optional<BlockEntry>& copied);

    SystemFile& file_;
    std::uint64_t end_;
    Directory directory_;
};

}  // namespace zqpaths
