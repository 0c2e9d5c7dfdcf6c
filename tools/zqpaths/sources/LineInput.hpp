#pragma once
// LineInput reads a file or standard input line by line, as it comes:
//
//     LineInput input("list.txt", '\n');  // "-" for standard input
//     input.visit([](std::string_view line, std::uint64_t number) { ... });
//
// Each line ends with the delimiter, which is not part of it; the last one need not.

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "zqpaths/file/FileDescriptor.hpp"

namespace zqpaths::program {

/// How messages call a file, or standard input.
std::string nameOfInput(const std::string& fileName);

/// Opens a file, or standard input. A named pipe is opened before somebody writes into it: the wait
/// is that for bytes. Throws Failure kFailed if it cannot be opened or is a directory.
FileDescriptor openInput(const std::string& fileName);

class LineInput {
public:
    /// Throws Failure kFailed if the file cannot be opened.
    LineInput(const std::string& fileName, char delimiter);

    /// For messages.
    const std::string& name() const noexcept { return name_; }

    /// Gives all lines with their numbers, from 1 on; memory for the longest. Throws Failure
    /// kFailed if the file cannot be read, and what the visitor throws. Called once.
    void visit(const std::function<void(std::string_view line, std::uint64_t number)>& visitor);

    /// How much of a regular file has been read, from 0 to 1; of others that is not known. May be
    /// called on any thread.
    std::optional<double> partRead() const noexcept;

private:
    std::string name_;
    char delimiter_;
    FileDescriptor file_;
    std::uint64_t size_;                      // bytes to be read; 0 if that is not known
    std::atomic<std::uint64_t> readSize_{0};  // bytes that were
};

}  // namespace zqpaths::program
