// Files that were made to harm who reads them are answered or refused, in little memory. How long
// they take beside honest ones of their size: bench/hostile_files.cpp.

#include <gtest/gtest.h>

#include <set>

#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/hostile/HostileFiles.hpp"
#include "tests/zqpaths/hostile/Reading.hpp"

namespace hostile {
namespace {

/// Of processors, for one file: far more than any takes, and less than for ever.
constexpr unsigned kMostSeconds = 60;

TEST(HostileFiles, areAnsweredOrRefusedInLittleMemory) {
    for (const HostileFile& hostile : hostileFiles()) {
        SCOPED_TRACE(hostile.name);
        const test_support::TemporaryTree tree;
        const std::string file = tree.pathOf("s.zqp");
        hostile.write(file);
        const Reading reading = readAlone(file, hostile.kind, kMostSeconds);
        EXPECT_STREQ(reading.failure.data(), "");
        EXPECT_LE(reading.peakBytes, kMostMemory);
        EXPECT_GT(reading.answered + reading.refused, 0U);
        EXPECT_EQ(reading.refused == 0, hostile.isWhole) << reading.refusal.data();
    }
}

TEST(HostileFiles, areFortyAndMoreOfDifferentNames) {
    std::set<std::string> names;
    for (const HostileFile& hostile : hostileFiles()) names.insert(hostile.name);
    EXPECT_EQ(names.size(), hostileFiles().size());
    EXPECT_GE(names.size(), 40U);
}

}  // namespace
}  // namespace hostile
