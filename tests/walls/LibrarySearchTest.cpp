// Where programs and libraries look for libraries: an empty entry among the folders would be the
// working directory, and whatever lies there would run.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/support/ProgramRun.hpp"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

/// What stands between the brackets of the lines RPATH and RUNPATH, cut at colons.
std::vector<std::string> searchedFolders(const std::string& file) {
    const auto run = test_support::runProgram({"readelf", "-d", file});
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    std::vector<std::string> folders;
    std::istringstream lines(run.output);
    for (std::string line; std::getline(lines, line);) {
        if (line.find("PATH)") == std::string::npos) continue;
        const std::size_t open = line.find('[') + 1;
        std::string rest = line.substr(open, line.rfind(']') - open);
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

TEST(LibrarySearch, findsTheLibraryOfTheProgram) {
    const auto run = test_support::runProgram({"ldd", ZQ_PROGRAM});
    EXPECT_THAT(run.output, testing::HasSubstr("/bin/../" ZQ_LIBDIR "/libzqpaths.so.0 "));
    EXPECT_THAT(run.output, testing::Not(testing::HasSubstr("korvex")));
}

}  // namespace
