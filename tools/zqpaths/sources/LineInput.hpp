#pragma once
// LineInput reads a file or standard input line by line, as it comes:
//
//     LineInput input("list.txt", '\n');  // "-" for standard input
//     input.visit([](std::string_view line) { ... });
//
// Each line ends with the delimiter, which is not part of it; the last one need not. A range of a
// file has the lines that begin in it, so that ranges which lie end to end have each line once,
// wherever they are cut. "ab\ncdefgh\ni\n" in ranges of four bytes, and what is in them:
//
//     |a b . c|d e f g|h . i .|
//     | ab, cdefgh |  none  | i |

#include <atomic>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "zqpaths/file/FileDescriptor.hpp"

namespace zqpaths::program {

bool isStandardInput(const std::string& fileName);

/// How messages call a file, or standard input.
std::string nameOfInput(const std::string& fileName);

/// Opens a file, or standard input. A named pipe is opened before somebody writes into it: the wait
/// is that for bytes. Throws Failure kFailed if it cannot be opened or is a directory.
FileDescriptor openInput(const std::string& fileName);

/// Some bytes of a file, all of them as a rule.
struct ByteRange {
    std::uint64_t begin = 0;
    std::uint64_t end = std::numeric_limits<std::uint64_t>::max();  // after the last one

    bool operator==(const ByteRange&) const = default;
};

class LineInput {
public:
    /// Throws Failure kFailed if the file cannot be opened, or has no bytes to go to where a range
    /// of it is wanted. O(bytes up to the first line of the range).
    LineInput(const std::string& fileName, char delimiter, ByteRange range = {});

    /// For messages.
    const std::string& name() const noexcept { return name_; }

    /// Whether nothing stands before the first line, or an empty one.
    bool isAfterGap() const noexcept { return isAfterGap_; }

    /// Gives all lines; memory for the longest. Throws Failure kFailed if the file cannot be read,
    /// and what the visitor throws. Called once.
    void visit(const std::function<void(std::string_view line)>& visitor);

    /// Where the line is that the visitor has, for messages, where `unit` is what it is called:
    /// "line 7", from 1 on. In a range that does not begin at the front of the file, where nobody
    /// has counted, "the line at byte 123", from 0 on.
    std::string place(std::string_view unit) const;

    /// How much of a regular file, or of a range of it, has been read, from 0 to 1; of others that
    /// is not known. May be called on any thread.
    std::optional<double> partRead() const noexcept;

private:
    void goTo(std::uint64_t begin);

    std::string name_;
    char delimiter_;
    FileDescriptor file_;
    ByteRange range_;
    std::uint64_t size_;                      // bytes to be read; 0 if that is not known
    std::atomic<std::uint64_t> readSize_{0};  // bytes that were
    std::uint64_t lineBegin_ = 0;             // of the line at hand, or the next
    std::uint64_t lineNumber_ = 0;            // of the line at hand
    bool isAfterGap_ = true;
};

}  // namespace zqpaths::program
