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

Option progressOption(MessageOptions& messages) {
    return flag("--no-progress", messages.noProgress, "show no progress");
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
    return rows(flag("-q,--quiet", messages.quiet, "tell errors only"), progressOption(messages));
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
