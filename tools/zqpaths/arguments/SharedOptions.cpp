#include "tools/zqpaths/arguments/SharedOptions.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {

Option setArgument(std::string& set) {
    return argument("SET", set, "the saved set");
}

Option partialOption(bool& partial) {
    return flag("--partial", partial,
                "read what is there of a set of sets, and tell each file that is missing; the "
                "status is as if there were no others");
}

Option forceOption(bool& force) {
    return flag("--force", force, "replace a set that is there");
}

Option seedOption(std::optional<std::uint64_t>& seed) {
    return number(
        "--seed", "S", seed,
        "the same seed gives the same paths everywhere; without one, one is drawn and told");
}

Option goneOption(bool& gone) {
    return flag("--gone", gone, "only paths that are gone, which are left out else");
}

std::vector<Option> progressOptions(MessageOptions& messages) {
    Option how{
        "--progress", "HOW",
        "show progress as a line on a terminal, as one wherever standard error leads, as JSON "
        "objects there, or not",
        [&messages](const std::string& word) {
            messages.lineProgress = word == "line";
            messages.jsonProgress = word == "json";
            messages.noProgress = word == "none";
        }};
    how.words = {"auto", "line", "json", "none"};
    return rows(std::move(how), excluding("--progress", flag("--no-progress", messages.noProgress,
                                                             "as --progress none")));
}

std::vector<Option> outputOptions(OutputOptions& output) {
    Option fields{"--fields", "FIELDS",
                  "print these of each path: number,path,folder,name,extension",
                  [&output](const std::string& names) { output.fields = parsePathFields(names); }};
    return rows(
        flag("-0,--null", output.nulTerminated, "end each path with NUL, not with a newline"),
        excluding("--null", flag("--json", output.json, "print one JSON object a line")),
        excluding("--null,--json", flag("--csv", output.csv, "print a table with a line of names")),
        std::move(fields),
        flag("--strict", output.strict,
             "fail where a newline or a tab in a path could be mistaken"));
}

std::vector<Option> messageOptions(MessageOptions& messages) {
    return rows(flag("-q,--quiet", messages.quiet, "tell errors only"), progressOptions(messages));
}

namespace {

struct NamedFormat {
    const char* name;
    SourceFormat format;
};

constexpr std::array kFormats{
    NamedFormat{"tar", SourceFormat::kTar},        NamedFormat{"zip", SourceFormat::kZip},
    NamedFormat{"s3", SourceFormat::kS3},          NamedFormat{"s3cmd", SourceFormat::kS3cmd},
    NamedFormat{"rclone", SourceFormat::kRclone},  NamedFormat{"gsutil", SourceFormat::kGsutil},
    NamedFormat{"jsonl", SourceFormat::kJsonLines}};

/// A file of paths, or several that several processes share, which may follow as arguments.
Option listOption(SourceOptions& source, SourceReaders readers) {
    const bool isShared = readers == SourceReaders::kMany;
    Option option{"--list", kFileValue,
                  isShared ? "the paths in FILE, and in those that follow"
                           : "the paths in FILE, - for standard input",
                  [&source](const std::string& file) {
                      source.format = SourceFormat::kList;
                      source.directories.push_back(file);
                  }};
    option.isRepeated = isShared;
    return isShared ? option : excluding("DIR", std::move(option));
}

/// Its words are all that it takes.
Option formatOption(std::optional<SourceFormat>& format, SourceReaders readers) {
    const std::string files =
        readers == SourceReaders::kMany ? "read files" : "read files, - for standard input,";
    Option option{"--from", "FORMAT",
                  files +
                      " in place of directories: tar, zip, listings of s3, s3cmd, rclone or "
                      "gsutil, jsonl",
                  [&format](const std::string& given) {
                      const auto* const named =
                          std::ranges::find(kFormats, given, &NamedFormat::name);
                      format = named->format;
                  }};
    for (const NamedFormat& named : kFormats) option.words.emplace_back(named.name);
    return excluding("--list", std::move(option));
}

/// Takes "f,d,l", in any order, as letters without the commas.
Option typesOption(std::string& types) {
    return {"--type", "T,T...",
            "only files (f), directories (d) or symbolic links (l); all but directories otherwise",
            [&types](const std::string& text) {
                for (std::size_t i = 0; i < text.size() || i % 2 == 0; ++i) {
                    const bool isLetter = i % 2 == 0;
                    const std::string_view allowed = isLetter ? "fdl" : ",";
                    if (i == text.size() || allowed.find(text[i]) == std::string_view::npos)
                        throw wrongUse("--type: " + text + " is not of f, d and l, with commas");
                    if (isLetter) types.push_back(text[i]);
                }
            }};
}

}  // namespace

const char* nameOfFormat(SourceFormat format) {
    return std::ranges::find(kFormats, format, &NamedFormat::format)->name;
}

Option directoriesArgument(SourceOptions& source, std::string description) {
    Option directories = arguments("DIR", source.directories, std::move(description));
    directories.isRequired = false;
    return directories;
}

std::vector<Option> sourceOptions(SourceOptions& source, SourceReaders readers) {
    Option nulDelimited =
        flag("-0,--null", source.nulDelimited, "the paths of the list end with NUL");
    nulDelimited.needed = "--list";
    return rows(
        directoriesArgument(source,  // without any there is a list
                            "directories to walk, and archives of tar and zip: everything "
                            "in them but directories is added"),
        listOption(source, readers), std::move(nulDelimited), formatOption(source.format, readers),
        text("--field", "NAME", source.field,
             "the member of jsonl's objects that is the path; outer.inner for one in another"),
        walkOptions(source));
}

std::vector<Option> walkOptions(SourceOptions& source) {
    return rows(
        flag("--follow", source.follow, "follow symbolic links to directories"),
        flag("--one-file-system", source.oneFileSystem, "stay on the file system of DIR"),
        flag("--hidden", source.hidden, "take names that begin with a dot, too"),
        texts("--exclude", "GLOB", source.exclude,
              "leave out what matches, as a line of gitignore does"),
        texts("--exclude-from", kFileValue, source.excludeFrom,
              "leave out what the lines of FILE match, as gitignore's do"),
        typesOption(source.types),
        number("--max-depth", "N", source.maxDepth, "at most N names below DIR, or in a path"),
        flag("--ignore-unreadable", source.ignoreUnreadable,
             "end with status 0 although something could not be read"),
        flag("--verbose", source.verbose, "tell each directory that cannot be read"),
        number("-j,--jobs", "N", source.jobs, "threads that read directories (one a core)"));
}

std::vector<Option> pieceOptions(PieceOptions& pieces) {
    return rows(
        required(text("--tree-string", kFileValue, pieces.treeString,
                      "the characters, UTF-16 in little-endian order")),
        required(text("--path-tree", kFileValue, pieces.pathTree, "the saved form of the paths")));
}

}  // namespace zqpaths::program
