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

Option goneOption(bool& gone) {
    return flag("--gone", gone, "only paths that are gone, which are left out else");
}

Option progressOption(MessageOptions& messages) {
    return flag("--no-progress", messages.noProgress, "show no progress");
}

std::vector<Option> outputOptions(OutputOptions& output) {
    return rows(
        flag("-0,--null", output.nulTerminated, "end each path with NUL, not with a newline"),
        excluding("--null", flag("--json", output.json, "print one JSON object a line")));
}

std::vector<Option> messageOptions(MessageOptions& messages) {
    return rows(flag("-q,--quiet", messages.quiet, "tell errors only"), progressOption(messages));
}

Option directoriesArgument(SourceOptions& source) {
    Option directories =
        arguments("DIR", source.directories,
                  "directories to walk: all in them that is no directory is taken");
    directories.isRequired = false;
    return directories;
}

std::vector<Option> sourceOptions(SourceOptions& source) {
    Option nulDelimited =
        flag("-0,--null", source.nulDelimited, "the paths of the list end with NUL");
    nulDelimited.needed = "--list";
    return rows(directoriesArgument(source),  // without any there is a list
                excluding("DIR", text("--list", kFileValue, source.list,
                                      "the paths in FILE, - for standard input")),
                std::move(nulDelimited), walkOptions(source));
}

std::vector<Option> walkOptions(SourceOptions& source) {
    return rows(
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
