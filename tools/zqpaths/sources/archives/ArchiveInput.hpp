#pragma once
// ArchiveInput hands an archive's bytes to the library that reads archives, in blocks, and keeps
// the last two of them, for those who want to see what the library has seen.
//
// Threads: an input belongs to one thread at a time.

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/file/FileDescriptor.hpp"

namespace zqpaths::program {

class ArchiveInput {
public:
    /// A file, "-" for standard input. Throws Failure kFailed if it cannot be opened.
    explicit ArchiveInput(const std::string& fileName);

    /// For messages.
    const std::string& name() const noexcept { return name_; }

    /// The next block, empty at the end; full before it. Throws Failure kFailed.
    std::string_view nextBlock();

    /// Passes over up to `count` bytes and returns how many: none unless in a file, and none beyond
    /// its end. Throws nothing.
    std::uint64_t skip(std::uint64_t count) noexcept;

    /// The bytes between two positions in the whole input, as far as they lie in the last two
    /// blocks, in a row up to `end`. O(bytes).
    std::string bytesBetween(std::uint64_t begin, std::uint64_t end) const;

    std::uint64_t position() const noexcept { return position_; }

private:
    struct Block {
        std::uint64_t begin = 0;
        std::vector<char> bytes;
    };

    std::string name_;
    FileDescriptor file_;
    std::uint64_t fileSize_ = 0;  // of what can be passed over; else 0
    std::uint64_t position_ = 0;  // bytes that were handed out or passed over
    Block last_;
    Block lastButOne_;
};

}  // namespace zqpaths::program
