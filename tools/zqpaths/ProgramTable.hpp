#pragma once
// The verbs and options of the program as text, from which help, manual page and completions come.

#include <string>
#include <vector>

namespace zqpaths {

/// The value of an option that takes a file; shells complete its name.
inline constexpr const char* kFileValue = "FILE";

struct OptionText {
    std::vector<std::string> names;  // "-j", "--jobs"
    std::string value;               // what follows the name, empty for a switch
    std::string description;
};

struct VerbText {
    std::string name;
    std::string synopsis;  // what follows the verb: "SET DIR..."
    std::string summary;
    std::string example;
    std::string details;  // sentences; empty where the summary says it all
    std::vector<OptionText> options;
    std::vector<std::string> words;  // what its argument can be, if these are few
};

struct ProgramTable {
    std::string name;
    std::string version;
    std::string summary;
    std::vector<VerbText> verbs;
};

}  // namespace zqpaths
