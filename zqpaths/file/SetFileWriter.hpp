#pragma once
// SetFileWriter makes a set file or a new state of one. Bytes that are committed are never
// overwritten; what it writes counts from commit on.
//
//     SetFileWriter writer("usr.zqp", SetFileWriter::Mode::kAppend);  // others wait from here on
//     writer.append(segment);
//     writer.commit();
//
// Threads: belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "zqpaths/file/SetFile.hpp"

namespace zqpaths {

class SetFileChange;  // what is done in a mode

/// The bytes of a segment that is to be written, and what the directory says of it.
struct SegmentBytes {
    SegmentForm form;
    std::uint64_t pathCount;
    std::uint64_t textSize;
    std::uint64_t treeStringSize;
    std::span<const std::byte> bytes;
};

/// The bytes of a block that is to be written, and what the directory says of it.
struct BlockBytes {
    std::uint64_t count;
    std::span<const std::byte> bytes;
};

class SetFileWriter {
public:
    enum class Mode { kCreate, kReplace, kAppend };

    /// Throws Error: kExists, kNotFound, kNotASet, kDamaged, kHeld, kNoSpace, kSystem.
    SetFileWriter(const std::string& path, Mode mode);
    SetFileWriter(const SetFileWriter&) = delete;
    SetFileWriter& operator=(const SetFileWriter&) = delete;
    ~SetFileWriter();  // discards what is not committed

    /// The segments that the next commit keeps, those appended last.
    const std::vector<SegmentEntry>& segments() const noexcept;

    /// Paths of a set of sets that is appended to; the segments that are appended are those of a
    /// new file of it. 0 otherwise.
    std::uint64_t pathsBefore() const noexcept;

    /// The file as it was committed before; nothing unless it is a set file that is
    /// appended to.
    const std::shared_ptr<const SetFile>& committed() const noexcept;

    /// Takes the segments from `first` on out of the set; the file keeps their bytes until it is
    /// compacted.
    void dropFrom(std::size_t first) noexcept;

    /// Writes a segment after all others. Throws Error kNoSpace, kSystem; it does not count then.
    void append(const SegmentBytes& segment);

    /// Write which paths are gone, and the scans, instead of what there was of them; without bytes
    /// there are none. What is not written stays. Throw Error as append does; the set then has none
    /// of that kind and is to be discarded.
    void putGone(const BlockBytes& block);
    void putScans(const BlockBytes& block);

    /// Makes the segments the content of the file, on the disk when it returns; others may write
    /// it from then on. Where more bytes of the file would be dead than alive, it is written anew
    /// without them. Once: then nothing more can be appended. Throws Error kExists, kHeld,
    /// kNoSpace, kSystem; the file is then as it was, unless the system refused to put on the
    /// device what it had taken already.
    void commit();

private:
    std::unique_ptr<SetFileChange> change_;
};

}  // namespace zqpaths
