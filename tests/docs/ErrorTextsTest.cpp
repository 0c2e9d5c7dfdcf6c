// docs/errors.md has a row for each exception of the core, with exactly its text.

#include <gtest/gtest.h>

#include <exception>
#include <filesystem>
#include <regex>
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

/// The rows `| `Class` | "text" | ...` of the page. The mark is that of the namespace sixpacks.
Texts rowsOf(const docs::Page& page) {
    static const std::regex row(
        R"rx(\| `(\w+)`(?: †)? \| "([^"]+)" \| [^|]+ \| [^|]+ \| [^|]+ \|)rx");
    Texts rows;
    for (const std::string& line : page.lines()) {
        std::smatch match;
        if (!std::regex_match(line, match, row)) continue;
        EXPECT_TRUE(rows.emplace(match[1], match[2]).second) << "two rows for " << match[1];
    }
    return rows;
}

/// The classes that the headers of the core derive from std::exception.
std::set<std::string> declaredExceptions() {
    static const std::regex declaration(R"(class (\w+) (?:final )?: public std::\w*exception\b.*)");
    std::set<std::string> names;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(ZQ_SOURCE_DIR "/compressedpaths")) {
        if (entry.path().extension() != ".hpp") continue;
        const docs::Page header(
            std::filesystem::relative(entry.path(), ZQ_SOURCE_DIR).generic_string());
        for (const std::string& line : header.lines()) {
            std::smatch match;
            if (std::regex_match(line, match, declaration)) names.insert(match[1]);
        }
    }
    return names;
}

TEST(ErrorsPage, hasTheTextOfEachException) {
    const docs::Page page("docs/errors.md");
    EXPECT_EQ(rowsOf(page), kTexts);
}

TEST(ErrorsPage, hasARowForEachExceptionThatAHeaderDeclares) {
    const docs::Page page("docs/errors.md");
    std::set<std::string> described;
    for (const auto& [name, text] : rowsOf(page)) described.insert(name);
    EXPECT_EQ(declaredExceptions(), described);
}

TEST(ErrorsPage, marksTheExceptionsOfSixpacks) {
    const docs::Page page("docs/errors.md");
    static const std::regex marked(R"(\| `(\w+)` † \|.*)");
    std::set<std::string> names;
    for (const std::string& line : page.lines()) {
        std::smatch match;
        if (std::regex_match(line, match, marked)) names.insert(match[1]);
    }
    EXPECT_EQ(names,
              (std::set<std::string>{"InvalidUintConversionException", "PrematureEndException"}));
}

}  // namespace
}  // namespace compressedpaths
