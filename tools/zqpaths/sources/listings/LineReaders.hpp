#pragma once
// How the lines of listings are read, one reader a format. What tools for object stores print:
//
//     s3      2023-05-01 12:34:56       1234 dir/a b.txt          aws s3 ls --recursive
//     s3cmd   2023-05-01 12:34         1234  s3://bucket/a.txt    s3cmd ls --recursive, with -l too
//     rclone       1234 dir/a b.txt                               rclone ls
//     gsutil  gs://bucket/dir/a.txt                               gsutil ls -r
//             1234  2023-05-01T12:34:56Z  gs://bucket/a.txt       gsutil ls -lr
//
// Sizes may be those for people. Names are the bytes up to the end of the line, spaces in front of
// them too, where the tool's columns tell them apart. An object of 0 bytes whose name ends with a
// separator marks a folder and is left out, as are headings, empty lines and sums.
//
// Threads: a reader belongs to one thread at a time.

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqpaths::program {

/// What is thrown for a line that does not fit: what was expected instead, in words.
struct UnexpectedLine {
    std::string expected;
};

/// The path in a line; nothing for lines that have none. The view is valid until the next call.
using LineReader = std::function<std::optional<std::string_view>(std::string_view line)>;

LineReader s3Reader();
LineReader s3cmdReader();
LineReader rcloneReader();
/// Headings of folders stand at the very front and after empty lines: where the first line does
/// not, `isAfterGap` is false.
LineReader gsutilReader(bool isAfterGap = true);

/// Objects of JSON, one a line, whose paths are the values of the member `field`, which are texts.
/// "a.b" is the member b of a, unless there is one of that name. Lines of white space have none.
LineReader jsonLinesReader(const std::string& field);

}  // namespace zqpaths::program
