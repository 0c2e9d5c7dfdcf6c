#include "tools/zqpaths/SetBuilding.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/SetSources.hpp"

namespace zqpaths {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Paths = std::vector<std::string>;

/// A source that gives other paths at each visit, and in the end the last ones again and again.
class ChangingSource final : public PathSource {
public:
    explicit ChangingSource(std::initializer_list<Paths> visits) : visits_(visits) {}

    void visit(const std::function<void(std::string_view path)>& visitor) override {
        const std::size_t index = std::min(visitCount_++, visits_.size() - 1);
        for (const std::string& path : visits_[index]) visitor(path);
    }
    std::uint64_t unreadableCount() const noexcept override { return 0; }

    std::size_t visitCount() const { return visitCount_; }

private:
    std::vector<Paths> visits_;
    std::size_t visitCount_ = 0;
};

Paths pathsOf(PathSet& set) {
    Paths paths;
    set.get(1, set.size(),
            [&paths](std::uint64_t, std::string_view path) { paths.emplace_back(path); });
    return paths;
}

TEST(SetBuilding, takesTwoPassesAndKeepsTheOrder) {
    ChangingSource source{{"b", "a/x", "a/y", "b"}};
    std::optional<PathSet> set = buildSet(source, {});
    ASSERT_TRUE(set);
    EXPECT_THAT(pathsOf(*set), ElementsAre("b", "a/x", "a/y", "b"));
    EXPECT_EQ(source.visitCount(), 2U);
}

TEST(SetBuilding, givesNoSetOfNoPaths) {
    ChangingSource source{{}};
    EXPECT_FALSE(buildSet(source, {}));
}

TEST(SetBuilding, keepsPathsOfManyBatchesInOrder) {
    Paths paths;
    for (int i = 0; i < 50'000; ++i)
        paths.push_back("f" + std::to_string(i % 7) + '/' + std::to_string(i));
    ChangingSource source{paths};
    std::optional<PathSet> set = buildSet(source, {});
    ASSERT_TRUE(set);
    EXPECT_EQ(pathsOf(*set), paths);
}

TEST(SetBuilding, countsAgainWhenACharacterComesUpThatWasNotCounted) {
    ChangingSource source{{"aa"}, {"aa", "new"}};
    std::optional<PathSet> set = buildSet(source, {});
    ASSERT_TRUE(set);
    EXPECT_THAT(pathsOf(*set), ElementsAre("aa", "new"));
    EXPECT_EQ(source.visitCount(), 4U);
}

TEST(SetBuilding, takesFewerPathsThanWereCounted) {
    ChangingSource source{{"a", "b"}, {"b"}};
    std::optional<PathSet> set = buildSet(source, {});
    ASSERT_TRUE(set);
    EXPECT_THAT(pathsOf(*set), ElementsAre("b"));
}

TEST(SetBuilding, failsWhenThePathsNeverStopChanging) {
    ChangingSource source{{"aa"}, {"bb"}, {"cc"}, {"dd"}, {"ee"}, {"ff"}, {"gg"}};
    try {
        buildSet(source, {});
        FAIL() << "a set was built";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::kFailed);
        EXPECT_THAT(failure.what(), HasSubstr("the paths change while they are read"));
    }
}

TEST(SetBuilding, knowsHowOftenEachCharacterOccurs) {
    ChangingSource source{{"d/aab", "d/a"}};
    std::optional<PathSet> set = buildSet(source, {});
    ASSERT_TRUE(set);
    const std::u16string characters = set->characters();
    const std::vector<double> frequencies = set->frequencies();
    ASSERT_EQ(characters.size(), frequencies.size());
    std::map<char16_t, double> frequencyOf;
    for (std::size_t i = 0; i < characters.size(); ++i) frequencyOf[characters[i]] = frequencies[i];
    const std::map<char16_t, double> expected{{u'a', 3}, {u'b', 1}, {u'd', 1}, {u'/', 1}};
    EXPECT_EQ(frequencyOf, expected);
}

TEST(SetBuilding, extendsASetByAnother) {
    ChangingSource source{{"a", "b/c"}};
    std::optional<PathSet> set = buildSet(source, {});
    ASSERT_TRUE(set);
    ChangingSource more{{"b/\xC4\x80", "a"}};
    ExtendedSetSource all(*set, more);
    std::optional<PathSet> extended = buildSet(all, {});
    ASSERT_TRUE(extended);
    EXPECT_THAT(pathsOf(*extended), ElementsAre("a", "b/c", "b/\xC4\x80", "a"));
}

}  // namespace
}  // namespace zqpaths
