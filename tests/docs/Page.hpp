#pragma once
// Page reads what a document of the repository holds for programs: its lines, and its fenced blocks
// by the words after the fence. Of this block the language is "hex", the name "bits-three":
//
//     ```hex bits-three
//     05 03
//     ```
//
// Threads: a page belongs to one thread at a time.

#include <cstddef>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace docs {

class Page {
public:
    /// `path` is relative to the top of the repository. Throws std::runtime_error if there is no
    /// such page, or it has two blocks of one name.
    explicit Page(const std::string& path) {
        std::ifstream in(ZQ_SOURCE_DIR "/" + path);
        if (!in) throw std::runtime_error("no page " + path);
        for (std::string line; std::getline(in, line);) lines_.push_back(line);
        for (std::size_t i = 0; i < lines_.size(); ++i)
            if (lines_[i].starts_with("```")) i = readBlock(i);
    }

    const std::vector<std::string>& lines() const { return lines_; }

    /// The text of each named block of a language, by name.
    const std::map<std::string, std::string>& blocksIn(const std::string& language) const {
        static const std::map<std::string, std::string> none;
        const auto found = blocks_.find(language);
        return found == blocks_.end() ? none : found->second;
    }

private:
    /// Reads the block whose opening fence is on line `first`; returns the line of its end.
    std::size_t readBlock(std::size_t first) {
        std::string language;
        std::string name;
        std::istringstream(lines_[first].substr(3)) >> language >> name;
        std::string text;
        std::size_t i = first + 1;
        for (; i < lines_.size() && lines_[i] != "```"; ++i) text += lines_[i] + '\n';
        if (!name.empty() && !blocks_[language].emplace(name, text).second)
            throw std::runtime_error("two blocks named " + name);
        return i;
    }

    std::vector<std::string> lines_;
    std::map<std::string, std::map<std::string, std::string>> blocks_;  // by language and name
};

}  // namespace docs
