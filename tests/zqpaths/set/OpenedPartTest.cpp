#include "zqpaths/set/OpenedPart.hpp"

#include <gtest/gtest.h>

#include <cstring>

#include "tests/support/SetFiles.hpp"
#include "tests/zqpaths/SegmentedSets.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths {
namespace {

constexpr std::uint64_t kPaths = 10;  // in a segment

std::vector<std::string> numberedPaths() {
    std::vector<std::string> paths;
    for (std::uint64_t i = 0; i < kPaths; ++i) paths.push_back("p" + std::to_string(i));
    return paths;
}

/// Two segments, and runs of gone paths, as pairs of integers: where one begins, and how many are
/// gone before it.
class PartOfAFile : public testing::Test {
protected:
    void markGone(const std::vector<std::uint64_t>& numbers) {
        PathSetWriter writer(made_.file(), PathSetWriter::Mode::kAppend);
        for (const std::uint64_t number : numbers) writer.markGone(number);
        writer.commit();
    }

    /// Puts these in the place of as many.
    void putRuns(const std::vector<std::uint64_t>& integers) {
        const BlockEntry block = SetFile::open(made_.file())->state().directory.gone.value();
        ASSERT_EQ(block.size, 8 * integers.size());
        std::string content = contentOf(made_.file());
        std::memcpy(content.data() + block.offset, integers.data(), block.size);
        writeContent(made_.file(), content);
    }

    /// One of the segments, as a set that has nothing else.
    OpenedPart part(std::uint64_t segment) const {
        SetPart part{};
        part.row = {0, segment, 1, kPaths, 0};
        part.firstNumber = 1;
        return {SetFile::open(made_.file()), part};
    }

    void expectNoNumber(const OpenedPart& part, std::uint64_t place) const {
        const Refusal refusal = refusalOf([&] { part.goneNumber(place); });
        EXPECT_EQ(refusal.kind, ErrorKind::kDamaged);
        EXPECT_EQ(refusal.text, made_.file() + ": the gone paths have numbers that cannot be");
    }

private:
    SegmentedSet made_{
        {{SegmentForm::kImage, numberedPaths()}, {SegmentForm::kImage, numberedPaths()}}};
};

TEST_F(PartOfAFile, countsItsGonePathsAsItsOwn) {
    markGone({2, 13, 14});
    const OpenedPart second = part(1);
    EXPECT_EQ(second.goneBelow(kPaths + 1), 2U);
    EXPECT_EQ(second.goneNumber(0), 3U);
    EXPECT_EQ(second.goneNumber(1), 4U);
    EXPECT_EQ(second.presentNumber(2), 5U);
    EXPECT_TRUE(second.isGone(3));
    EXPECT_FALSE(second.isGone(2));
}

// Where runs are out of order, the search for a place can end among those of another part.
TEST_F(PartOfAFile, refusesNumbersOfGonePathsThatAreBeforeIt) {
    markGone({1, 2, 3, 4, 6, 7, 8, 9, 11, 12, 13});
    putRuns({2, 0, 3, 9, 15, 5});
    expectNoNumber(part(1), 0);  // 7 of the file
}

TEST_F(PartOfAFile, refusesNumbersOfGonePathsThatAreAfterIt) {
    markGone({1, 3, 5, 7});
    putRuns({2, 0, 12, 6, 13, 0, 14, 0});
    expectNoNumber(part(0), 0);  // 14 of the file
}

}  // namespace
}  // namespace zqpaths
