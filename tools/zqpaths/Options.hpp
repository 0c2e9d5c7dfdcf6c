#pragma once
// What the arguments of each verb say, whatever they are written like. Arguments.cpp fills them.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zqpaths {

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

struct IndexOptions {
    std::string set;
    SourceOptions source;
    bool force = false;  // replace a set that is there
};

struct AddOptions {
    std::string set;
    SourceOptions source;
};

struct GetOptions {
    std::string set;
    std::vector<std::string> numbers;  // "N", "A:B", "A:B:STEP", "-" for more from standard input
    bool groups = false;
    OutputOptions output;
};

struct ListOptions {
    std::string set;
    bool walk = false;
    std::string under;  // only paths that begin with these components
    std::optional<std::string> glob;
    std::optional<std::uint64_t> depth;  // at most so many components behind `under`
    OutputOptions output;
};

enum class PatternKind { kGlob, kRegex, kFixed };

struct FindOptions {
    std::string set;
    std::string pattern;
    PatternKind kind = PatternKind::kGlob;
    bool ignoreCase = false;
    bool countOnly = false;
    bool statusOnly = false;
    OutputOptions output;
};

struct NumberOptions {
    std::string set;
    std::vector<std::string> paths;
    OutputOptions output;
};

struct SampleOptions {
    std::string set;
    std::uint64_t count = 1;
    std::uint64_t seed = 0;
    OutputOptions output;
};

struct ShuffleOptions {
    std::string set;
    std::uint64_t seed = 0;
    OutputOptions output;
};

struct SplitOptions {
    std::string set;
    std::uint64_t rank = 0;  // from 0
    std::uint64_t of = 1;
    OutputOptions output;
};

struct InfoOptions {
    std::string set;
    bool json = false;
};

struct VerifyOptions {
    std::string set;
    bool disk = false;
};

struct DiffOptions {
    std::string first;
    std::string second;
    OutputOptions output;
};

struct MergeOptions {
    std::string out;
    std::vector<std::string> sets;
    bool force = false;
};

struct ExportOptions {
    std::string set;
    std::string treeString;  // file for the characters, UTF-16 in little-endian byte order
    std::string pathTree;    // file for the saved form
};

struct ImportOptions {
    std::string set;
    std::string treeString;
    std::string pathTree;
    bool force = false;
};

struct DocumentOptions {
    std::string kind;
};

}  // namespace zqpaths
