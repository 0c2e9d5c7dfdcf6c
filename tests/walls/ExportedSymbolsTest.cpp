// The library shows its three entries and nothing of what it is made of.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/ProgramRun.hpp"

namespace {

TEST(ExportedSymbols, areTheThreeEntries) {
    const auto run =
        test_support::runProgram({"nm", "-D", "--defined-only", "--format=posix", ZQ_LIBRARY});
    ASSERT_EQ(run.exitStatus, 0) << run.errors;
    std::vector<std::string> names;
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);)
        names.push_back(line.substr(0, line.find(' ')));
    EXPECT_THAT(names, testing::UnorderedElementsAre("KVInitialize_libzqcompressedpaths",
                                                     "KVTerminate_libzqcompressedpaths",
                                                     "_Z17InitializeLibraryv"));
}

}  // namespace
