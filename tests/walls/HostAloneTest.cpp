// A program that is linked with the host alone, and holds nothing of the core, loads the library
// and uses it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/ProgramRun.hpp"

namespace {

using test_support::ProgramRun;
using test_support::runProgram;
using testing::HasSubstr;
using testing::Not;

std::string outputOf(const std::vector<std::string>& arguments) {
    const ProgramRun run = runProgram(arguments);
    EXPECT_EQ(run.exitStatus, 0) << run.errors;
    return run.output;
}

/// What tells that something of the library is there: its name, the core's, its own libraries.
void expectNothingOfTheLibrary(const std::string& text) {
    for (const char* trace : {"libzqcompressedpaths", "compressedpaths_core", "libz.so", "libtbb"})
        EXPECT_THAT(text, Not(HasSubstr(trace)));
}

TEST(HostAlone, isWhatTheProgramIsLinkedWith) {
    const std::string dynamicSection = outputOf({"readelf", "-d", ZQ_HOST_SESSION});
    EXPECT_THAT(dynamicSection, HasSubstr("Shared library: [libkorvexhost.so]"));
    expectNothingOfTheLibrary(dynamicSection);
    expectNothingOfTheLibrary(outputOf({"ldd", ZQ_HOST_SESSION}));
}

TEST(HostAlone, needsNoLibraryThatItLoads) {
    expectNothingOfTheLibrary(outputOf({"readelf", "-d", ZQ_HOST}));
    expectNothingOfTheLibrary(outputOf({"ldd", ZQ_HOST}));
}

TEST(HostAlone, bringsNothingOfTheCore) {
    for (const char* file : {ZQ_HOST_SESSION, ZQ_HOST})
        EXPECT_THAT(outputOf({"nm", "-C", file}), Not(HasSubstr("compressedpaths::")));
}

TEST(HostAlone, loadsTheLibraryAndUsesIt) {
    EXPECT_THAT(outputOf({ZQ_HOST_SESSION, ZQ_LIBRARY}), HasSubstr("/data/b.txt"));
}

}  // namespace
