// Where programs and libraries look for libraries: an empty entry among the folders would be the
// working directory, and whatever lies there would run.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/ProgramRun.hpp"

namespace {

using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

/// What stands between the brackets of the lines of the dynamic section with a tag that ends so.
std::vector<std::string> dynamicEntries(const std::string& file, const std::string& tagEnd) {
    const auto run = test_support::runProgram({"readelf", "-d", file});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    std::vector<std::string> entries;
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) {
        if (line.find(tagEnd + ")") == std::string::npos) continue;
        const std::size_t open = line.find('[') + 1;
        entries.push_back(line.substr(open, line.rfind(']') - open));
    }
    return entries;
}

/// The entries RPATH and RUNPATH, cut at colons.
std::vector<std::string> searchedFolders(const std::string& file) {
    std::vector<std::string> folders;
    for (std::string rest : dynamicEntries(file, "PATH")) {
        for (std::size_t colon = 0; colon != std::string::npos; rest.erase(0, colon + 1)) {
            colon = rest.find(':');
            folders.push_back(rest.substr(0, colon));
            if (colon == std::string::npos) break;
        }
    }
    return folders;
}

TEST(LibrarySearch, ofTheProgramIsBesideItAlone) {
    EXPECT_THAT(searchedFolders(ZQ_PROGRAM), ElementsAre("$ORIGIN/../" ZQ_LIBDIR));
}

TEST(LibrarySearch, hasNoEmptyEntryInLibraries) {
    EXPECT_THAT(searchedFolders(ZQ_LIBRARY), ElementsAre("$ORIGIN"));
    for (const char* needsNoneOfOurs : {ZQ_PATHS_LIBRARY, ZQ_HOST})
        EXPECT_THAT(searchedFolders(needsNoneOfOurs), IsEmpty());
}

TEST(LibrarySearch, ofOtherProgramsOfTheBuildNamesFoldersFromTheRoot) {
    EXPECT_THAT(searchedFolders(ZQ_HOST_SESSION), Each(StartsWith("/")));
}

TEST(LibrarySearch, ofTheLibraryForProgramsIsForWhatItUses) {
    const std::vector<std::string> needed = dynamicEntries(ZQ_PATHS_LIBRARY, "NEEDED");
    EXPECT_THAT(needed, Contains(StartsWith("libre2.so")));
    EXPECT_THAT(needed, Not(Contains(StartsWith("libtbb"))));  // its threads are its own
}

TEST(LibrarySearch, findsTheLibraryOfTheProgram) {
    const auto run = test_support::runProgram({"ldd", ZQ_PROGRAM});
    EXPECT_THAT(run.output, testing::HasSubstr("/bin/../" ZQ_LIBDIR "/libzqpaths.so.0 "));
    EXPECT_THAT(run.output, Not(testing::HasSubstr("korvex")));
}

}  // namespace
