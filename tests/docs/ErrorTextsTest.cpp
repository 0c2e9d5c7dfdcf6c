// docs/errors.md has a row for each exception of the core, with exactly its text.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <filesystem>
#include <set>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "compressedpaths/HuffmanPathTreeExceptions.hpp"
#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"
#include "tests/docs/Page.hpp"

namespace compressedpaths {
namespace {

using Texts = std::map<std::string, std::string>;  // by class

template <class... Exceptions>
Texts textsOf(const std::vector<std::string>& names) {
    Texts texts;
    auto name = names.begin();
    (texts.emplace(*name++, Exceptions().what()), ...);
    return texts;
}

#define ZQ_TEXTS_OF(...) textsOf<__VA_ARGS__>(splitNames(#__VA_ARGS__))

/// "A, sixpacks::B" as "A" and "B".
std::vector<std::string> splitNames(const std::string& list) {
    std::vector<std::string> names;
    std::istringstream in(list);
    for (std::string name; std::getline(in >> std::ws, name, ',');)
        names.push_back(name.substr(name.rfind(':') + 1));
    return names;
}

const Texts kTexts =
    ZQ_TEXTS_OF(AlphabetTooSmallException, CodeNotFoundException, CodeWordsTooLongException,
                CodingTreeExistsException, DescendingPathTotalsException,
                EmptyPathForTraverseException, ImplausibleLengthException, IncompleteBatchException,
                IncompleteCodingTreeException, IncompleteTrieException, InvalidCodeException,
                InvalidFileNumberException, InvalidPathNumberException, InvalidTrackException,
                NoCodeForEmptyString, NoMorePathException, NoTreeToTraverseException,
                NoUsableCodingTreeException, UnequalBatchListsException, UnknownNodeTypeException,
                sixpacks::InvalidUintConversionException, sixpacks::PrematureEndException);

std::string trimmed(const std::string& text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// A row of the tables, "| `Class` † | "text" | met when | afterwards | what to do |".
struct Row {
    std::string name;
    std::string text;
    bool isOfSixpacks;  // it has the mark
};

std::vector<std::string> cellsOf(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream in(line.substr(1));
    for (std::string cell; std::getline(in, cell, '|');) cells.push_back(trimmed(cell));
    return cells;
}

std::vector<Row> rowsOf(const docs::Page& page) {
    std::vector<Row> rows;
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

/// The classes that the headers of a folder of the core derive from a standard exception.
std::set<std::string> exceptionsDeclaredIn(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(ZQ_SOURCE_DIR "/" + folder)) {
        if (entry.path().extension() != ".hpp") continue;
        const docs::Page header(folder + "/" + entry.path().filename().string());
        for (const std::string& line : header.lines()) {
            if (line.find("class ") != 0 || line.find(": public std::") == std::string::npos)
                continue;
            std::string name;
            std::istringstream(line.substr(6)) >> name;
            names.insert(name);
        }
    }
    return names;
}

TEST(ErrorsPage, hasTheTextOfEachException) {
    const docs::Page page("docs/errors.md");
    Texts described;
    for (const Row& row : rowsOf(page))
        EXPECT_TRUE(described.emplace(row.name, row.text).second) << "two rows for " << row.name;
    EXPECT_EQ(described, kTexts);
}

TEST(ErrorsPage, hasARowForEachExceptionThatAHeaderDeclares) {
    const docs::Page page("docs/errors.md");
    std::set<std::string> ofTheCore;
    std::set<std::string> ofSixpacks;
    for (const Row& row : rowsOf(page))
        (row.isOfSixpacks ? ofSixpacks : ofTheCore).insert(row.name);
    EXPECT_EQ(exceptionsDeclaredIn("compressedpaths"), ofTheCore);
    EXPECT_EQ(exceptionsDeclaredIn("compressedpaths/sixpacks"), ofSixpacks);
}

}  // namespace
}  // namespace compressedpaths
