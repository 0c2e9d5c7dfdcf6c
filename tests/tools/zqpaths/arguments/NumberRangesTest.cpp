#include "tools/zqpaths/arguments/NumberRanges.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::uint64_t kManyPaths = 1000;

std::vector<std::uint64_t> numbersOf(const std::string& text, std::uint64_t setSize = kManyPaths) {
    const NumberRange range = parseNumberRange(text, setSize);
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t i = 0; i < range.size(); ++i) numbers.push_back(range[i]);
    return numbers;
}

std::string complaintOf(const std::string& text, std::uint64_t setSize = kManyPaths) {
    try {
        parseNumberRange(text, setSize);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::kFailed);
        return failure.what();
    }
    return "none";
}

TEST(NumberRanges, areOneNumber) {
    EXPECT_THAT(numbersOf("7"), ElementsAre(7));
}

TEST(NumberRanges, haveBothEnds) {
    EXPECT_THAT(numbersOf("2:5"), ElementsAre(2, 3, 4, 5));
    EXPECT_THAT(numbersOf("5:5"), ElementsAre(5));
    EXPECT_THAT(numbersOf("5:5:-3"), ElementsAre(5));
}

TEST(NumberRanges, goAsFarAsStepsReach) {
    EXPECT_THAT(numbersOf("2:9:3"), ElementsAre(2, 5, 8));
    EXPECT_THAT(numbersOf("10:1:-4"), ElementsAre(10, 6, 2));
    EXPECT_THAT(numbersOf("10:2:-4"), ElementsAre(10, 6, 2));
    EXPECT_THAT(numbersOf("3:1:-9007199254740992"), ElementsAre(3));
}

TEST(NumberRanges, doNotCountDownUnlessTold) {
    EXPECT_EQ(complaintOf("5:2"), "5:2: counts down, which takes a step like -1");
    EXPECT_EQ(complaintOf("5:2:3"), "5:2:3: counts down, which takes a step like -1");
    EXPECT_EQ(complaintOf("2:5:-1"), "2:5:-1: counts up, which takes a step like 1");
}

TEST(NumberRanges, refuseAStepOfNothing) {
    EXPECT_EQ(complaintOf("1:2:0"), "1:2:0: a step of 0 goes nowhere");
}

TEST(NumberRanges, beginAtOne) {
    EXPECT_EQ(complaintOf("0"), "0: the first path has number 1");
    EXPECT_EQ(complaintOf("-0"), "-0: the first path has number 1");
    EXPECT_EQ(complaintOf("0:"), "0:: the first path has number 1");
    EXPECT_EQ(complaintOf("3:0:-1"), "3:0:-1: the first path has number 1");
}

TEST(NumberRanges, refuseNumbersThatNoSetHas) {
    EXPECT_EQ(complaintOf("9007199254740993"), "9007199254740993: no set has so many paths");
    EXPECT_THAT(complaintOf("1:99999999999999999999999"), HasSubstr("no set has so many paths"));
    EXPECT_THAT(complaintOf("1:2:-9223372036854775808"), HasSubstr("no set has so many paths"));
}

TEST(NumberRanges, refuseWhatIsNoNumber) {
    for (const char* text :
         {"", "x", "1x", "1:2:", "::", "1:2:3:4", ":::", "1.5", " 1", "+1", "--1", "-", "-:"})
        EXPECT_THAT(complaintOf(text), HasSubstr("is neither a number nor numbers like")) << text;
}

TEST(NumberRanges, countFromTheEndBelowZero) {
    EXPECT_THAT(numbersOf("-1", 10), ElementsAre(10));
    EXPECT_THAT(numbersOf("-10", 10), ElementsAre(1));
    EXPECT_THAT(numbersOf("-3:-2", 10), ElementsAre(8, 9));
    EXPECT_THAT(numbersOf("8:-1", 10), ElementsAre(8, 9, 10));
    EXPECT_THAT(numbersOf("-1:-9:-4", 10), ElementsAre(10, 6, 2));
    EXPECT_EQ(complaintOf("-1:-3", 10), "-1:-3: counts down, which takes a step like -1");
}

TEST(NumberRanges, goToTheEndsThatAreLeftOut) {
    EXPECT_THAT(numbersOf(":3", 10), ElementsAre(1, 2, 3));
    EXPECT_THAT(numbersOf("9:", 10), ElementsAre(9, 10));
    EXPECT_THAT(numbersOf("-2:", 10), ElementsAre(9, 10));
    EXPECT_THAT(numbersOf(":-9", 10), ElementsAre(1, 2));
    EXPECT_THAT(numbersOf("::4", 10), ElementsAre(1, 5, 9));
    EXPECT_THAT(numbersOf("3::4", 10), ElementsAre(3, 7));
    EXPECT_THAT(numbersOf(":7:3", 10), ElementsAre(1, 4, 7));
    EXPECT_THAT(numbersOf(":", 3), ElementsAre(1, 2, 3));
}

TEST(NumberRanges, goToTheOtherEndsWhereTheyCountDown) {
    EXPECT_THAT(numbersOf("::-1", 3), ElementsAre(3, 2, 1));
    EXPECT_THAT(numbersOf("3::-1", 10), ElementsAre(3, 2, 1));
    EXPECT_THAT(numbersOf(":8:-1", 10), ElementsAre(10, 9, 8));
}

TEST(NumberRanges, areInASetThatHasTheHighestOfThem) {
    EXPECT_THAT(numbersOf("1:10", 10), testing::SizeIs(10));
    EXPECT_THAT(numbersOf("1:12:4", 9), ElementsAre(1, 5, 9));
    EXPECT_THAT(numbersOf("10:1:-1", 10), testing::SizeIs(10));
}

TEST(NumberRanges, tellNumberAndSizeOfASetThatIsTooSmall) {
    const auto none = [](const std::string& number, const std::string& size) {
        return "there is no path " + number + " in this set of " + size + " paths";
    };
    EXPECT_EQ(complaintOf("1:11", 10), none("11", "10"));
    EXPECT_EQ(complaintOf("11:1:-1", 10), none("11", "10"));
    EXPECT_EQ(complaintOf("-11", 10), none("-11", "10"));
    EXPECT_EQ(complaintOf("-5:", 3), none("-5", "3"));
    EXPECT_EQ(complaintOf("5:", 3), none("5", "3"));
    EXPECT_EQ(complaintOf(":5", 3), none("5", "3"));
    EXPECT_EQ(complaintOf(":5:-1", 3), none("5", "3"));
    EXPECT_EQ(complaintOf("1", 0), none("1", "0"));
    EXPECT_EQ(complaintOf("1:", 0), none("1", "0"));
    EXPECT_EQ(complaintOf(":1", 0), none("1", "0"));
}

TEST(NumberRanges, ofAllPathsAreNoneInAnEmptySet) {
    EXPECT_THAT(numbersOf(":", 0), testing::IsEmpty());
    EXPECT_THAT(numbersOf("::-3", 0), testing::IsEmpty());
    EXPECT_EQ(complaintOf("::0", 0), "::0: a step of 0 goes nowhere");
}

}  // namespace
}  // namespace zqpaths::program
