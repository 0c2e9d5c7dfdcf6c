#include "tools/zqpaths/arguments/SharedOptions.hpp"

namespace zqpaths::program {

Option setArgument(std::string& set) {
    return argument("SET", set, "the saved set");
}

Option forceOption(bool& force) {
    return flag("--force", force, "replace a set that is there");
}

Option seedOption(std::uint64_t& seed) {
    return required(number("--seed", "S", seed, "the same seed gives the same order everywhere"));
}

std::vector<Option> progressOptions(MessageOptions& messages) {
    Option how{"--progress", "HOW",
               "show progress as a line on a terminal, as JSON objects on standard error, or not",
               [&messages](const std::string& word) {
                   messages.jsonProgress = word == "json";
                   messages.noProgress = word == "none";
               }};
    how.words = {"auto", "json", "none"};
    return rows(std::move(how), excluding("--progress", flag("--no-progress", messages.noProgress,
                                                             "as --progress none")));
}

std::vector<Option> outputOptions(OutputOptions& output) {
    return rows(
        flag("-0,--null", output.nulTerminated, "end each path with NUL, not with a newline"),
        excluding("--null", flag("--json", output.json, "print one JSON object a line")));
}

std::vector<Option> messageOptions(MessageOptions& messages) {
    return rows(flag("-q,--quiet", messages.quiet, "tell errors only"), progressOptions(messages));
}

std::vector<Option> sourceOptions(SourceOptions& source) {
    Option directories =
        arguments("DIR", source.directories,
                  "directories to walk: all in them that is no directory is taken");
    directories.isRequired = false;  // without any there is a list
    Option nulDelimited =
        flag("-0,--null", source.nulDelimited, "the paths of the list end with NUL");
    nulDelimited.needed = "--list";
    return rows(
        std::move(directories),
        excluding("DIR", text("--list", kFileValue, source.list,
                              "the paths in FILE, - for standard input")),
        std::move(nulDelimited),
        flag("--follow", source.follow, "follow symbolic links to directories"),
        flag("--one-file-system", source.oneFileSystem, "stay on the file system of DIR"),
        flag("--hidden", source.hidden, "take names that begin with a dot, too"),
        flag("--ignore-unreadable", source.ignoreUnreadable,
             "end with status 0 although something could not be read"),
        number("-j,--jobs", "N", source.jobs, "threads that read directories (one a core)"));
}

std::vector<Option> pieceOptions(PieceOptions& pieces) {
    return rows(
        required(text("--tree-string", kFileValue, pieces.treeString,
                      "the characters, UTF-16 in little-endian order")),
        required(text("--path-tree", kFileValue, pieces.pathTree, "the saved form of the paths")));
}

}  // namespace zqpaths::program
