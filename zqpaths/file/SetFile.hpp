#pragma once
// SetFile is a set file that is mapped to be read: its directory, and the bytes of its segments.
//
//     const std::shared_ptr<const SetFile> file = SetFile::open("usr.zqp");
//     for (const SegmentEntry& entry : file->segments()) use(file->bytesOf(entry));
//
// Threads: never changes; any number of threads may read it.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "zqpaths/Error.hpp"
#include "zqpaths/WorkWatcher.hpp"
#include "zqpaths/file/SetFileLayout.hpp"
#include "zqpaths/file/SystemFile.hpp"

namespace zqpaths {

class SetFile {
public:
    /// Maps the file and reads header and directory. Throws Error: kNotFound, kSystem, kNotASet,
    /// kDamaged. O(segments).
    static std::shared_ptr<const SetFile> open(const std::string& path);

    /// The file at `path`, which people know as `name`.
    static std::shared_ptr<const SetFile> open(const std::string& path, const std::string& name);

    SetFile(const SetFile&) = delete;
    SetFile& operator=(const SetFile&) = delete;

    const std::string& path() const noexcept { return file_.name(); }
    std::uint64_t size() const noexcept { return state_.superblock.end; }  // of what is committed
    const std::vector<SegmentEntry>& segments() const noexcept { return state_.directory.segments; }
    std::uint64_t pathCount() const noexcept { return pathCount_; }
    const CommittedState& state() const noexcept { return state_; }

    /// The bytes of a segment of this file, which are mapped, 4096-aligned.
    std::span<const std::byte> bytesOf(const SegmentEntry& entry) const noexcept;

    /// The bytes of the segment at a place from 0 on, after their sum has been looked at. Throws
    /// Error kDamaged with its number.
    std::span<const std::byte> wholeBytesOf(std::size_t segment) const;

    /// The bytes of a block of this file, which are mapped, 8-aligned; none if there is none.
    std::span<const std::byte> bytesOf(const std::optional<BlockEntry>& block) const noexcept;

    /// The same, after its sum has been looked at. Throws Error kDamaged with what it is called.
    std::span<const std::byte> wholeBytesOf(const char* what,
                                            const std::optional<BlockEntry>& block) const;

    /// Throws Error kDamaged if the file has become shorter than what was opened. One system call.
    void requireWhole() const;

    /// What `read()` gives; Error that it throws has the name of the file before its text.
    template <class Read>
    auto naming(Read read) const {
        try {
            return read();
        } catch (const Error& error) {
            throw Error(error.kind(), path(), error.what());
        }
    }

    /// What is damaged of header, directory, segments and blocks by their sums. Throws Error as
    /// requireWhole does, kSystem. O(size).
    std::vector<Error> verifySums(const WorkWatcher& watch = {}) const;

private:
    /// The bytes of a file, mapped for as long as this lives.
    class Mapping {
    public:
        Mapping() noexcept = default;
        explicit Mapping(const SystemFile& file);
        Mapping(Mapping&& other) noexcept : bytes_(std::exchange(other.bytes_, {})) {}
        Mapping& operator=(Mapping&& other) noexcept {
            std::swap(bytes_, other.bytes_);
            return *this;
        }
        ~Mapping();

        std::span<const std::byte> bytes() const noexcept { return bytes_; }

    private:
        std::span<const std::byte> bytes_;
    };

    explicit SetFile(SystemFile file);

    void verifyHeader(std::vector<Error>& damages) const;
    Error damage(const std::string& reason) const;

    SystemFile file_;
    Mapping mapping_;  // may go past what is committed, where a writer is at work
    CommittedState state_;
    std::uint64_t pathCount_ = 0;
};

}  // namespace zqpaths
