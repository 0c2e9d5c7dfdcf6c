// The libraries show what they are for and nothing of what they are made of.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/ProgramRun.hpp"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::EndsWith;
using testing::StartsWith;

std::vector<std::string> linesOf(const std::vector<std::string>& arguments) {
    const auto run = test_support::runProgram(arguments);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    std::vector<std::string> lines;
    std::istringstream output(run.output);
    for (std::string line; std::getline(output, line);) lines.push_back(line);
    return lines;
}

TEST(ExportedSymbols, ofTheHostsLibraryAreItsThreeEntries) {
    std::vector<std::string> names =
        linesOf({"nm", "-D", "--defined-only", "--format=posix", ZQ_LIBRARY});
    for (std::string& name : names) name.resize(name.find(' '));
    EXPECT_THAT(names, testing::UnorderedElementsAre("KVInitialize_libzqcompressedpaths",
                                                     "KVTerminate_libzqcompressedpaths",
                                                     "_Z17InitializeLibraryv"));
}

/// The names that the library for programs shows, each with its version, as
/// "zqp_open@@ZQPATHS_0.1". The versions are symbols, too, without one.
std::vector<std::string> shownToPrograms() {
    return linesOf({"nm", "-D", "-C", "--defined-only", "--format=just-symbols", ZQ_PATHS_LIBRARY});
}

/// The functions that zqpaths.h declares, which is what stands before a parenthesis in its code.
std::set<std::string> functionsOfTheHeader() {
    const std::regex call(R"(\b(zqp_\w+)\()");
    std::set<std::string> names;
    std::ifstream in(ZQ_SOURCE_DIR "/zqpaths/zqpaths.h");
    for (std::string line; std::getline(in, line);) {
        line.resize(std::min(line.size(), line.find("//")));
        std::smatch match;
        if (std::regex_search(line, match, call)) names.insert(match[1]);
    }
    return names;
}

TEST(ExportedSymbols, ofTheLibraryForProgramsAreFunctionsForCAndItsClasses) {
    for (const std::string& name : shownToPrograms()) {
        if (name.starts_with("zqp_") || name.starts_with("ZQPATHS_")) continue;
        EXPECT_THAT(name, AnyOf(StartsWith("zqpaths::"), StartsWith("vtable for zqpaths::"),
                                StartsWith("typeinfo for zqpaths::"),
                                StartsWith("typeinfo name for zqpaths::")));
        EXPECT_THAT(name, EndsWith("@@ZQPATHS_CXX_0"));
        EXPECT_THAT(name, testing::Not(StartsWith("zqpaths::SetFile"))) << "is internal";
        EXPECT_THAT(name, testing::Not(StartsWith("zqpaths::cinterface"))) << "is internal";
    }
    EXPECT_THAT(shownToPrograms(), Contains(StartsWith("zqpaths::PathSet::open(")));
    EXPECT_THAT(shownToPrograms(), Contains(StartsWith("zqpaths::PathSetWriter::commit(")));
}

TEST(ExportedSymbols, forCAreTheFunctionsOfTheHeader) {
    std::set<std::string> shown;
    for (const std::string& name : shownToPrograms())
        if (name.starts_with("zqp_")) shown.insert(name);
    std::set<std::string> declared;
    for (const std::string& name : functionsOfTheHeader()) declared.insert(name + "@@ZQPATHS_0.1");
    EXPECT_EQ(shown, declared);
    EXPECT_TRUE(shown.contains("zqp_writer_commit@@ZQPATHS_0.1"));
}

TEST(ExportedSymbols, haveTheVersionsThatThereAre) {
    std::vector<std::string> versions = shownToPrograms();
    std::erase_if(versions, [](const std::string& name) { return !name.starts_with("ZQPATHS_"); });
    EXPECT_THAT(versions, testing::UnorderedElementsAre("ZQPATHS_0.1", "ZQPATHS_CXX_0"));
}

}  // namespace
