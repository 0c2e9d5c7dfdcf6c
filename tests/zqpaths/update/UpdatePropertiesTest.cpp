// Trees that change at random: an updated set has what a walk gives, and every path that stays has
// its number.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <system_error>

#include "tests/zqpaths/update/UpdatedSet.hpp"

namespace zqpaths {
namespace {

/// Changes a tree, with few names, so that they meet.
class RandomTree {
public:
    explicit RandomTree(unsigned seed) : random_(seed) {
        for (int i = 0; i < 60; ++i) addFile();
    }

    const std::string& path() const { return tree_.path(); }

    void change() {
        const std::string one = tree_.pathOf(anyPath());
        const std::string other = tree_.pathOf(anyPath());
        std::error_code ignored;  // what cannot be done is not done
        switch (random_() % 8) {
            case 0:
                std::filesystem::remove_all(one, ignored);
                break;
            case 1:
            case 2:
                std::filesystem::remove(one, ignored);
                break;
            case 3:
            case 4:
                std::filesystem::rename(one, other, ignored);
                break;
            case 5:
                std::filesystem::create_symlink("a", other, ignored);
                break;
            default:
                addFile();
        }
    }

private:
    std::string anyPath() {
        std::string path(1, letter());
        for (auto depth = random_() % 5; depth > 0; --depth) path += {'/', letter()};
        return path;
    }

    char letter() { return static_cast<char>('a' + random_() % 5); }

    void addFile() {
        const std::filesystem::path file = tree_.pathOf(anyPath());
        std::error_code ignored;
        std::filesystem::create_directories(file.parent_path(), ignored);
        if (!std::filesystem::exists(std::filesystem::symlink_status(file, ignored)))
            std::ofstream(file, std::ios::binary).flush();
    }

    test_support::TemporaryTree tree_;
    std::mt19937 random_;
};

std::set<std::string> keysOf(const std::map<std::string, std::uint64_t>& numbers) {
    std::set<std::string> keys;
    for (const auto& [path, number] : numbers) keys.insert(path);
    return keys;
}

class ChangingTree : public testing::TestWithParam<unsigned> {};

TEST_P(ChangingTree, isInTheSetAsAWalkGivesIt) {
    RandomTree tree(GetParam());
    UpdatedSet set(tree.path(), {.follow = GetParam() % 4 == 3, .jobs = GetParam() % 3});
    std::map<std::string, std::uint64_t> numbers = set.present();  // of all that ever were there
    std::mt19937 random(GetParam());
    for (int round = 0; round < 12; ++round) {
        SCOPED_TRACE(round);
        for (auto changes = random() % 6; changes > 0; --changes) tree.change();
        set.update();
        const auto present = set.present();
        ASSERT_EQ(keysOf(present), set.walked());
        for (const auto& [path, number] : present)
            ASSERT_EQ(numbers.emplace(path, number).first->second, number) << path;
        ASSERT_EQ(set.open().size(), numbers.size());  // each path once
        ASSERT_TRUE(set.open().verify().empty());
    }
}

INSTANTIATE_TEST_SUITE_P(ofSeed, ChangingTree, testing::Range(1U, 17U));

}  // namespace
}  // namespace zqpaths
