#pragma once
// What several verbs are told in the same words, and the rows of the table for it.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/zqpaths/arguments/Verb.hpp"

namespace zqpaths::program {

/// How paths are printed.
struct OutputOptions {
    bool nulTerminated = false;  // else by a newline
    bool json = false;           // one object a line
};

/// What is told on standard error.
struct MessageOptions {
    bool quiet = false;  // errors only
    bool noProgress = false;
};

/// Where paths come from.
struct SourceOptions {
    std::vector<std::string> directories;
    std::optional<std::string> list;  // a file of paths, "-" for standard input
    bool nulDelimited = false;        // the list's paths end with NUL, else with a newline
    bool follow = false;              // symbolic links to directories
    bool oneFileSystem = false;
    bool hidden = false;            // take names that begin with '.', too
    bool ignoreUnreadable = false;  // not a failure at the end
    unsigned jobs = 0;              // threads that read directories; 0 for one a core
};

/// The two saved pieces of a set, as other hosts have them.
struct PieceOptions {
    std::string treeString;  // file for the characters, UTF-16 in little-endian byte order
    std::string pathTree;    // file for the saved form
};

Option setArgument(std::string& set);
Option forceOption(bool& force);
Option seedOption(std::uint64_t& seed);
Option goneOption(bool& gone);
Option progressOption(MessageOptions& messages);  // the last of messageOptions()
std::vector<Option> outputOptions(OutputOptions& output);
std::vector<Option> messageOptions(MessageOptions& messages);
std::vector<Option> sourceOptions(SourceOptions& source);
Option directoriesArgument(SourceOptions& source);       // need not be given
std::vector<Option> walkOptions(SourceOptions& source);  // the last of sourceOptions()
std::vector<Option> pieceOptions(PieceOptions& pieces);

}  // namespace zqpaths::program
