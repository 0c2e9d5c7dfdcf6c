#pragma once
// Output prints paths on standard output and does not lose one in silence: a write that fails ends
// the program with a message and ExitStatus::kFailed, one into a closed pipe ends it quietly.
//
//     Output output(options.output);
//     output.path(7, "usr/bin/x");  // a line; with --json {"number":7,"path":"usr/bin/x"}
//     output.finish();
//
// Names that are not UTF-8 have a second field with --json: "bytes", in base64.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tools/zqpaths/Options.hpp"

namespace zqpaths {

/// The reader of standard output has gone; main ends the program quietly.
class ClosedPipe {};

class Output {
public:
    explicit Output(const OutputOptions& options);
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// A path alone, or with its number in front: the number, a tab and the path.
    void path(std::uint64_t number, std::string_view path);
    void numberedPath(std::uint64_t number, std::string_view path);
    void path(std::string_view path);

    /// A path that only one of two sets has: a mark, a space and the path; with --json "in".
    void markedPath(char mark, std::string_view path);

    void number(std::uint64_t number, std::string_view path);  // the number alone
    void count(std::uint64_t count);

    /// A folder, then its files, each behind a tab; with --json one object.
    void group(std::string_view folder, std::span<const std::string> fileNames);

    /// A line of text as it is.
    void line(std::string_view text);

    /// Writes what is still held back. Throws Failure kFailed or ClosedPipe, as all calls may.
    void finish();

private:
    void append(std::string_view text);
    void end();

    OutputOptions options_;
    std::string buffer_;
};

}  // namespace zqpaths
