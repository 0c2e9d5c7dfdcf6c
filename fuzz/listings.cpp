// Lists and listings of all formats that are read line by line. Any bytes give the same paths, or
// the same refusal, in a file, in pieces through a pipe, and in ranges wherever they are cut; each
// path is one that a set takes. Lines that are made of paths give these.
//
// The first byte chooses the format and whether lines are made, the next two where the bytes are
// cut.

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/InputScript.hpp"
#include "fuzz/PipedInput.hpp"
#include "fuzz/Require.hpp"
#include "fuzz/TemporaryFolder.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/SourceFormats.hpp"

using namespace zqpaths::program;
using fuzzing::InputScript;
using fuzzing::require;
using fuzzing::succeeds;

namespace {

using Paths = std::vector<std::string>;

/// As zqpaths --from has them, and how a line of a path looks; a list of paths that end with NUL
/// is the second one.
struct Format {
    SourceFormat format;
    bool nulDelimited;
    std::string before;
    std::string after;
};

const std::array<Format, 7>& formats() {
    static const std::array<Format, 7> all{{
        {SourceFormat::kList, false, "", "\n"},
        {SourceFormat::kList, true, "", std::string(1, '\0')},
        {SourceFormat::kS3, false, "2023-05-01 12:34:56       1234 ", "\n"},
        {SourceFormat::kS3cmd, false, "2023-05-01 12:34         1234  s3://", "\n"},
        {SourceFormat::kRclone, false, "     1234 ", "\n"},
        {SourceFormat::kGsutil, false, "      1234  2023-05-01T12:34:56Z  gs://", "\n"},
        {SourceFormat::kJsonLines, false, R"({"size": 3, "path": ")", "\"}\n"},
    }};
    return all;
}

SourceOptions optionsOf(const Format& format) {
    SourceOptions options;
    options.format = format.format;
    options.field = "path";
    options.nulDelimited = format.nulDelimited;
    return options;
}

/// The paths of a file or a range of it; nothing if it is refused.
std::optional<Paths> read(const std::string& file, const Format& format, ByteRange range = {}) {
    Paths paths;
    const bool isTaken = succeeds<Failure>([&] {
        const auto source = openFormat(file, optionsOf(format), range);
        source->visit([&](std::string_view path) { paths.emplace_back(path); });
    });
    return isTaken ? std::optional(paths) : std::nullopt;
}

/// The first half of the ranges has what begins before the place, the second the rest.
std::optional<Paths> readInRanges(const std::string& file, const Format& format,
                                  std::vector<std::uint64_t> places) {
    std::ranges::sort(places);
    places.push_back(ByteRange().end);
    Paths paths;
    std::uint64_t begin = 0;
    for (const std::uint64_t end : places) {
        const std::optional<Paths> part = read(file, format, {begin, end});
        if (!part) return std::nullopt;
        paths.insert(paths.end(), part->begin(), part->end());
        begin = end;
    }
    return paths;
}

void requireSame(const Format& format, std::span<const std::uint8_t> bytes, unsigned cut,
                 std::size_t pieceSize) {
    static const fuzzing::TemporaryFolder folder;
    const std::string file = folder.write("listing", std::as_bytes(bytes));
    const std::optional<Paths> whole = read(file, format);
    if (whole)
        for (const std::string& path : *whole)
            require(!path.empty() && path.find('\0') == std::string::npos, "a set takes the path");

    const std::uint64_t size = bytes.size() + 1;
    require(readInRanges(file, format, {cut % size, cut * 7 % size}) == whole,
            "ranges that lie end to end have each line once");

    const fuzzing::PipedInput piped(bytes, pieceSize);
    require(read("-", format) == whole, "pieces of any size give the same paths");
}

/// Paths of any bytes that a line of the format can hold.
Paths pathsFrom(InputScript& script, const Format& format) {
    Paths paths;
    while (!script.isAtEnd()) {
        const std::vector<std::uint8_t> bytes = script.bytes(1 + script.byte() % 32);
        std::string path(bytes.begin(), bytes.end());
        const bool isJson = format.format == SourceFormat::kJsonLines;
        std::erase_if(path, [&](char byte) {
            const bool isEscaped = byte == '"' || byte == '\\' || (byte >= 0 && byte < ' ');
            return byte == '\0' || byte == '\n' || (isJson && isEscaped);
        });
        if (!path.empty()) paths.push_back(path);
    }
    return paths;
}

void requireMade(const Format& format, const Paths& paths, unsigned cut, std::size_t pieceSize) {
    std::string text;
    Paths expected;
    const std::string scheme = format.format == SourceFormat::kS3cmd    ? "s3://"
                               : format.format == SourceFormat::kGsutil ? "gs://"
                                                                        : "";
    for (const std::string& path : paths) {
        text += format.before + path + format.after;
        expected.push_back(scheme + path);
    }
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    static const fuzzing::TemporaryFolder folder;
    const std::string file = folder.write("made", std::as_bytes(std::span(bytes)));
    require(read(file, format) == expected, "the paths of lines are those they were made of");
    requireSame(format, bytes, cut, pieceSize);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    const unsigned choice = script.byte();
    const Format& format = formats()[choice % formats().size()];
    const auto cut = static_cast<unsigned>(script.byte());
    const std::size_t pieceSize = 1 + script.byte();
    if (choice >= 128) {
        requireMade(format, pathsFrom(script, format), cut, pieceSize);
    } else {
        const std::vector<std::uint8_t> rest = script.rest();
        requireSame(format, rest, cut, pieceSize);
    }
    return 0;
}
