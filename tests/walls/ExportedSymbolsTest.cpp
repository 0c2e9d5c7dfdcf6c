// The libraries show what they are for and nothing of what they are made of.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/ProgramRun.hpp"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::Each;
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

TEST(ExportedSymbols, ofTheLibraryForProgramsAreItsOwn) {
    std::vector<std::string> names =
        linesOf({"nm", "-D", "-C", "--defined-only", "--format=just-symbols", ZQ_PATHS_LIBRARY});
    EXPECT_THAT(names, Each(AnyOf(StartsWith("zqpaths::"), StartsWith("vtable for zqpaths::"),
                                  StartsWith("typeinfo for zqpaths::"),
                                  StartsWith("typeinfo name for zqpaths::"))));
    EXPECT_THAT(names, Contains(StartsWith("zqpaths::PathSet::open(")));
    EXPECT_THAT(names, Contains(StartsWith("zqpaths::PathSetWriter::commit(")));
    for (const std::string& name : names)
        EXPECT_THAT(name, testing::Not(StartsWith("zqpaths::SetFile"))) << "is internal";
}

}  // namespace
