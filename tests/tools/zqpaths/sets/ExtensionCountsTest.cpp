#include "tools/zqpaths/sets/ExtensionCounts.hpp"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths::program {
namespace {

class ExtensionCountsTest : public ::testing::Test {
protected:
    /// "name count" of the most frequent, then of the others and of those without.
    std::string told(const std::vector<std::string>& paths, std::size_t limit) {
        PathSetWriter writer(file_);
        for (const std::string& path : paths) writer.add(path);
        writer.commit();
        steps_ = 0;
        const ExtensionCounts counts =
            countExtensions(PathSet::open(file_), limit, [this] { ++steps_; });
        std::string text;
        for (const auto& [name, count] : counts.most)
            text += name + ' ' + std::to_string(count) + ", ";
        return text + std::to_string(counts.others) + ", " + std::to_string(counts.none);
    }

    test_support::TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
    std::size_t steps_ = 0;
};

TEST_F(ExtensionCountsTest, nameTheMostFrequentFirst) {
    const std::vector<std::string> paths{"a/1.c", "2.h", "b/3.c", "4.b", "5", ".6", "7.c", "8.a"};
    EXPECT_EQ(told(paths, 2), "c 3, a 1, 2, 2");
    EXPECT_EQ(steps_, paths.size());
}

TEST_F(ExtensionCountsTest, areRightAlthoughThereAreTooManyToCount) {
    std::vector<std::string> paths;
    for (int i = 0; i < 100'000; ++i) {
        paths.push_back("f." + std::to_string(i));
        if (i % 10 == 0) paths.emplace_back("x.often");
        if (i > 99'900) paths.emplace_back("x.late");
    }
    EXPECT_EQ(told(paths, 2), "often 10000, late 99, 100000, 0");
}

}  // namespace
}  // namespace zqpaths::program
