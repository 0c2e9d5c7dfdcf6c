#pragma once
// Output prints paths on standard output and does not lose one in silence: a write that fails ends
// the program with a message and ExitStatus::kFailed, one into a closed pipe ends it quietly.
//
//     Output output(options.output);
//     output.path(7, "usr/bin/x");  // a line; with --json {"number":7,"path":"usr/bin/x"}
//     output.finish();
//
// Names that are not UTF-8 have U+FFFD for each bad byte with --json, and a second field: "bytes",
// in base64.
//
// Threads: an output belongs to one thread at a time, and there is one at a time.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "zqpaths/update/SetUpdate.hpp"

namespace zqpaths::program {

/// The reader of standard output has gone; main ends the program quietly.
class ClosedPipe {};

/// Which of two sets a path is in.
enum class Side { kFirst, kSecond };

class Output {
public:
    explicit Output(const OutputOptions& options);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// A path alone, or with its number in front: the number, a tab and the path. With --json both
    /// have the number.
    void path(std::uint64_t number, std::string_view path);
    void numberedPath(std::uint64_t number, std::string_view path);
    void path(std::string_view path);

    /// A path that only one of two sets has: '<' or '>', a space and the path; with --json "in" is
    /// "first" or "second", and the number is the one that it has there.
    void pathIn(Side side, std::optional<std::uint64_t> number, std::string_view path);

    /// A path that has come or gone: '+' or '-', a space and the path; with --json "change" is
    /// "added", "gone" or "back".
    void changed(PathChange change, std::uint64_t number, std::string_view path);

    void number(std::uint64_t number, std::string_view path);  // the number alone; with --json both
    void count(std::uint64_t count);                           // with --json {"count":7}

    /// A folder, then its files, each after a tab; with --json one object of "folder" and "files".
    /// Where one of them is not UTF-8 there is "folderBytes" or "fileBytes", null for files that
    /// are.
    void group(std::string_view folder, std::span<const std::string> fileNames);

    /// Text as it is; a line of it is ended by a newline whatever ends paths.
    void text(std::string_view text);
    void line(std::string_view text);

    /// Writes what is still held back. What is held back when an output is destroyed is lost.
    /// Throws Failure kFailed or ClosedPipe, as all calls may.
    void finish();

private:
    void append(std::string_view text);
    void end();
    void endWith(char terminator);

    OutputOptions options_;
    std::string buffer_;
};

}  // namespace zqpaths::program
