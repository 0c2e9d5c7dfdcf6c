#pragma once
// Output prints paths on standard output, as text, as a table or as JSON, and loses none in
// silence.
//
//     Output output(options.output);
//     output.path(7, "usr/bin/x");  // a line; with --json {"number":7,"path":"usr/bin/x"}
//     output.finish();
//
// - Text: the path, or fields with tabs between them, ended by a newline or NUL. A terminal gets
//   names as PrintablePath shows them, all else the bytes. What a reader could then mistake is
//   told at the end, or refused with --strict: a newline where newlines end paths, and a tab in a
//   field that others follow.
// - A table (--csv), as RFC 4180 has it: a line of names, then one a path; bytes as they are.
// - JSON: an object a line. Names that are not UTF-8 have U+FFFD for each bad byte, and a field
//   more with all bytes in base64.
//
// Threads: an output belongs to one thread at a time, and there is one at a time.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/JsonText.hpp"
#include "tools/zqpaths/output/PathFields.hpp"
#include "tools/zqpaths/output/StandardOutput.hpp"
#include "tools/zqpaths/output/Terminal.hpp"
#include "zqpaths/update/SetUpdate.hpp"

namespace zqpaths::program {

/// Which of two sets a path is in.
enum class Side { kFirst, kSecond };

/// The keys of what is said of paths that differ, and of those that have changed.
inline constexpr std::string_view kSideKey = "in";
inline constexpr std::string_view kChangeKey = "change";

/// What a verb prints of a path where --fields does not say.
struct OutputManner {
    PathFields asText{PathField::kPath};
    PathFields forPrograms{PathField::kNumber, PathField::kPath};  // with --csv and --json
    std::string_view markKey{};  // of a table's first column, where something is said of paths
    bool isQuiet = false;        // no warnings
};

class Output {
public:
    explicit Output(const OutputOptions& options, OutputManner manner = {}, OutputPlace place = {});
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// The fields of a path; of one without a number, those that it has.
    void path(std::uint64_t number, std::string_view path);
    void path(std::string_view path);

    /// A path that only one of two sets has: '<' or '>', a space and the path; with fields, a tab
    /// and the fields. With --csv and --json, a field "in" is "first" or "second". The number is
    /// the one that the path has there, if it has one. A table requires the markKey kSideKey.
    void pathIn(Side side, std::optional<std::uint64_t> number, std::string_view path);

    /// A path that has come or gone, in the same way: '+' or '-'; a field "change" is "added",
    /// "gone" or "back". A table requires the markKey kChangeKey.
    void changed(PathChange change, std::uint64_t number, std::string_view path);

    void count(std::uint64_t count);  // with --json {"count":7}, with --csv a table of one line

    /// A folder, then its files, each after a tab; with --json one object of "folder" and "files".
    /// Where one of them is not UTF-8 there is "folderBytes" or "fileBytes", null for files that
    /// are. No table has groups.
    void group(std::string_view folder, std::span<const std::string> fileNames);

    /// Text as it is; a line of it is ended by a newline whatever ends paths.
    void text(std::string_view text);
    void line(std::string_view text);
    void line(JsonObject& object);

    /// Writes what is still held back. What is held back when an output is destroyed is lost.
    /// Throws Failure kFailed or ClosedPipe, as all calls may.
    void flush();

    /// The same, and tells what could be mistaken. To be called once, at the end.
    void finish();

private:
    /// What is said of a path: a sign in text, a word under a key in tables and JSON.
    struct Mark {
        std::string_view key;
        char sign;
        std::string_view word;
    };
    static Mark markOf(Side side);
    static Mark markOf(PathChange change);

    struct Row {
        std::optional<Mark> mark;
        std::optional<std::uint64_t> number;
        std::string_view path;
    };

    void print(const Row& row);
    void printText(const Row& row);
    void printTableRow(const Row& row);
    void printObject(const Row& row);
    void beginTable();
    void appendName(std::string_view name);
    void appendCell(std::string_view text);

    /// What a reader of text could take for the end of a path, or for that of a field.
    enum class Mistakable { kNothing, kNewline, kTab };
    Mistakable mistakableIn(std::string_view path) const;
    void note(Mistakable what, std::string_view path);

    void end();
    void endWith(std::string_view terminator);

    const OutputOptions options_;
    const OutputManner manner_;
    const PathFields fields_;
    const bool isTerminal_;
    const Charset charset_;
    const bool isPathAlone_;  // and as the bytes that it has
    bool hasTableBegun_ = false;
    std::uint64_t newlineCount_ = 0;  // of paths that hold what can be mistaken
    std::uint64_t tabCount_ = 0;
    StandardOutput out_;
    JsonObject object_;
};

}  // namespace zqpaths::program
