#pragma once
// What the sources of the repository include:
//
//     for (const Include& include : includesIn("host/arrays"))
//         include.source;  // "host/arrays/kxArray.hpp"
//         include.target;  // "host/Export.hpp", or "vector" of the standard library

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace walls {

struct Include {
    std::string source;
    std::string target;
    bool isQuoted;

    bool isOf(std::string_view folder) const { return target.starts_with(folder); }
};

/// What stands between the marks of an #include line; empty if it is no such line.
inline std::string includedBy(const std::string& line) {
    const std::size_t directive = line.find_first_not_of(" \t");
    if (directive == std::string::npos || line[directive] != '#') return {};
    const std::size_t word = line.find_first_not_of(" \t", directive + 1);
    if (word == std::string::npos || line.compare(word, 7, "include") != 0) return {};
    const std::size_t open = line.find_first_of("<\"", word);
    const std::size_t close = line.find_first_of(">\"", open + 1);
    if (close == std::string::npos) throw std::runtime_error("cannot read: " + line);
    return line.substr(open + 1, close - open - 1);
}

/// All includes of one source, named from the top of the repository.
inline std::vector<Include> includesOf(const std::string& source) {
    std::ifstream in(ZQ_SOURCE_DIR "/" + source);
    if (!in) throw std::runtime_error("no source " + source);
    std::vector<Include> includes;
    for (std::string line; std::getline(in, line);) {
        const std::string target = includedBy(line);
        if (!target.empty())
            includes.push_back({source, target, line.find('"') != std::string::npos});
    }
    return includes;
}

/// All includes of the sources in a folder and below. Throws if there are none.
inline std::vector<Include> includesIn(const std::string& folder) {
    std::vector<Include> includes;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(ZQ_SOURCE_DIR "/" + folder)) {
        const std::string extension = entry.path().extension();
        if (extension != ".cpp" && extension != ".hpp" && extension != ".c" && extension != ".h")
            continue;
        const std::vector<Include> more =
            includesOf(std::filesystem::relative(entry.path(), ZQ_SOURCE_DIR));
        includes.insert(includes.end(), more.begin(), more.end());
    }
    if (includes.empty()) throw std::runtime_error("no sources in " + folder);
    return includes;
}

}  // namespace walls
