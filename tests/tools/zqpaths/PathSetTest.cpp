#include "tools/zqpaths/PathSet.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/tools/zqpaths/SavedFields.hpp"
#include "tests/tools/zqpaths/SmallSavedForm.hpp"
#include "tools/zqpaths/CharacterCounts.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathBatch.hpp"

namespace zqpaths {
namespace {

using testing::ElementsAre;
using testing::StartsWith;
using Paths = std::vector<std::string>;

PathSet setOf(const Paths& paths) {
    CharacterCounts characters;
    for (const std::string& path : paths) characters.count(path);
    PathSet set(characters);
    PathBatch batch;
    for (const std::string& path : paths) batch.append(path);
    set.add(batch);
    return set;
}

PathSet restoredFrom(const Bytes& body) {
    std::vector<std::pair<std::string, korvex::Array>> fields;
    fields.emplace_back(kTreeStringField, korvex::text(u"cba"));
    fields.emplace_back(kPathTreeField, korvex::bytes(saved(body)));
    return PathSet::restored(makeStructure(std::move(fields)), "s.zqp");
}

Paths pathsOf(PathSet& set, std::uint64_t first, std::uint64_t last) {
    Paths paths;
    set.get(first, last,
            [&paths](std::uint64_t, std::string_view path) { paths.emplace_back(path); });
    return paths;
}

template <class Work>
void expectDamage(const Work& work, const std::string& message) {
    try {
        work();
        ADD_FAILURE() << "it is taken for whole";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::kDamaged);
        EXPECT_THAT(failure.what(), StartsWith(message));
    }
}

TEST(PathSet, givesPathsByNumber) {
    PathSet set = setOf({"a/x", "/b", "a/y"});
    EXPECT_EQ(set.size(), 3U);
    EXPECT_THAT(pathsOf(set, 2, 3), ElementsAre("/b", "a/y"));
    EXPECT_THROW(pathsOf(set, 3, 4), Failure);
    EXPECT_THROW(pathsOf(set, 0, 1), Failure);
}

TEST(PathSet, knowsItsSizeAfterLoading) {
    for (const std::size_t size : {1U, 2U, 3U, 4U, 5U, 63U, 64U, 65U}) {
        Paths paths;
        for (std::size_t i = 0; i < size; ++i) paths.push_back("d/" + std::to_string(i));
        PathSet set = setOf(paths);
        PathSet loaded = PathSet::restored(set.fields(), "s.zqp");
        EXPECT_EQ(loaded.size(), size);
        EXPECT_EQ(pathsOf(loaded, 1, size), paths);
    }
}

TEST(PathSet, tellsTheFirstPathThatCannotBeRead) {
    Bytes body = kBody;
    body[kSecondTotalAt] = 200;
    PathSet set = restoredFrom(body);
    EXPECT_EQ(set.size(), 201U);
    Paths before;
    const auto append = [&](std::uint64_t, std::string_view path) { before.emplace_back(path); };
    expectDamage([&] { set.get(1, 201, append); }, "s.zqp: path 4 cannot be read: ");
    EXPECT_THAT(before, ElementsAre("ab", "ac", "aca"));
    const std::uint64_t numbers[] = {1, 7};
    expectDamage([&] { set.getGroups(numbers, [](auto...) {}); }, "s.zqp: path 7 cannot be read: ");
}

// The class cannot make such a set, but others can.
TEST(PathSet, tellsThatAPathIsInNoFolder) {
    PathSet set = restoredFrom(kBody);
    EXPECT_EQ(set.size(), 4U);
    EXPECT_THAT(pathsOf(set, 1, 3), ElementsAre("ab", "ac", "aca"));
    expectDamage([&] { pathsOf(set, 4, 4); }, "s.zqp: path 4 cannot be read: it is in none");
    const std::uint64_t numbers[] = {1, 4};
    expectDamage([&] { set.getGroups(numbers, [](auto...) {}); },
                 "s.zqp: path 4 cannot be read: it is in none");
}

}  // namespace
}  // namespace zqpaths
