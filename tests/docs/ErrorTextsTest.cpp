// docs/errors.md has a row for each exception of the core, with exactly its text.

#include <gtest/gtest.h>

#include <exception>
#include <filesystem>
#include <set>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "compressedpaths/HuffmanPathTreeExceptions.hpp"
#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"
#include "tests/docs/ErrorRows.hpp"

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
                CodingTreeExistsException, DescendingPathTotalsException, DamagedBlockException,
                EmptyPathForTraverseException, ImageNotWrittenException, ImplausibleLengthException,
                IncompleteBatchException, IncompleteCodingTreeException, IncompleteTrieException,
                InvalidCodeException, InvalidFileNumberException, InvalidImageException,
                InvalidPathNumberException, InvalidTrackException, NoCodeForEmptyString,
                NoMorePathException, NoTreeToTraverseException, NoUsableCodingTreeException,
                SetTooLargeException, UnequalBatchListsException, UnknownNodeTypeException,
                sixpacks::InvalidUintConversionException, sixpacks::PrematureEndException);

/// The page's rows of the core, whose errors have names of classes.
std::vector<docs::ErrorRow> rowsOfTheCore() {
    std::vector<docs::ErrorRow> rows = docs::errorRowsOf(docs::Page("docs/errors.md"));
    std::erase_if(rows, [](const docs::ErrorRow& row) { return row.isOfTheHost(); });
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
    Texts described;
    for (const docs::ErrorRow& row : rowsOfTheCore())
        EXPECT_TRUE(described.emplace(row.name, row.text).second) << "two rows for " << row.name;
    EXPECT_EQ(described, kTexts);
}

TEST(ErrorsPage, hasARowForEachExceptionThatAHeaderDeclares) {
    std::set<std::string> ofTheCore;
    std::set<std::string> ofSixpacks;
    for (const docs::ErrorRow& row : rowsOfTheCore())
        (row.isOfSixpacks ? ofSixpacks : ofTheCore).insert(row.name);
    EXPECT_EQ(exceptionsDeclaredIn("compressedpaths"), ofTheCore);
    EXPECT_EQ(exceptionsDeclaredIn("compressedpaths/sixpacks"), ofSixpacks);
}

}  // namespace
}  // namespace compressedpaths
