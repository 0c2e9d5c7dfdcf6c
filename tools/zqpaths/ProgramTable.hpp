#pragma once
// The verbs and options of the program as text, from which help, manual page and completions come.

#include <string>
#include <vector>

namespace zqpaths {

struct OptionText {
    std::vector<std::string> names;  // "-j", "--jobs"
    std::string value;               // what follows the name, empty for a switch
    std::string description;
};

struct VerbText {
    std::string name;
    std::string synopsis;  // what follows the verb: "SET DIR…"
    std::string summary;
    std::string example;
    std::vector<OptionText> options;
};

struct ProgramTable {
    std::string name;
    std::string version;
    std::string summary;
    std::vector<VerbText> verbs;
};

}  // namespace zqpaths
