#pragma once
// The bytes of an example on a page: hex digits in pairs, an offset before a colon, which has to be
// that of the next byte, and a remark after "#". "??" is a byte that differs from run to run:
//
//     24: ?? ?? 01  # a seed, a one
//
// Threads: a free function without state.

#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

namespace docs {

/// "??" stands for the byte of `actual` at its place.
inline std::vector<std::uint8_t> parseHex(const std::string& text,
                                          const std::vector<std::uint8_t>& actual = {}) {
    std::vector<std::uint8_t> bytes;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        for (std::string word; words >> word;) {
            if (word.back() == ':')
                EXPECT_EQ(std::stoul(word), bytes.size()) << line;
            else if (word == "??" && bytes.size() < actual.size())
                bytes.push_back(actual[bytes.size()]);
            else if (word.size() == 2 && std::isxdigit(word[0]) && std::isxdigit(word[1]))
                bytes.push_back(static_cast<std::uint8_t>(std::stoul(word, nullptr, 16)));
            else
                ADD_FAILURE() << "not two hex digits: " << word << " in: " << line;
        }
    }
    return bytes;
}

}  // namespace docs
