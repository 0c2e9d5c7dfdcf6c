#pragma once
// The rows of the tables in docs/errors.md, "| `Name` † | "text" | cell | cell | cell |".

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "tests/docs/Page.hpp"

namespace docs {

struct ErrorRow {
    std::string name;  // of a class of the core, or an identifier of the host
    std::string text;
    bool isOfSixpacks;  // it has the mark

    bool isOfTheHost() const { return name.find(':') != std::string::npos; }
};

inline std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream in(line.substr(1));
    for (std::string cell; std::getline(in, cell, '|');) {
        const std::size_t first = cell.find_first_not_of(' ');
        const std::size_t last = cell.find_last_not_of(' ');
        cells.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
    }
    return cells;
}

/// All rows of a page. Fails the test if one is not of this form.
inline std::vector<ErrorRow> errorRowsOf(const Page& page) {
    std::vector<ErrorRow> rows;
    for (const std::string& line : page.lines()) {
        if (!line.starts_with("| `")) continue;
        const std::vector<std::string> cells = cellsOf(line);
        EXPECT_EQ(cells.size(), 5U) << line;
        EXPECT_THAT(cells, ::testing::Each(::testing::Not(::testing::IsEmpty()))) << line;
        const std::string& text = cells.at(1);
        EXPECT_TRUE(text.starts_with('"') && text.ends_with('"')) << line;
        const std::size_t end = cells[0].find('`', 1);
        rows.push_back({cells[0].substr(1, end - 1), text.substr(1, text.size() - 2),
                        cells[0].substr(end + 1) == " †"});
    }
    return rows;
}

}  // namespace docs
