#include "zqpaths/directory/ScanRecord.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "tests/support/ZeroPages.hpp"
#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

using testing::ElementsAre;

constexpr std::int64_t kASecond = 1'000'000'000;
constexpr std::int64_t kBegan = 1000 * kASecond;
constexpr DirectoryStamp kStamp{5, 70, 20 * kASecond, 21 * kASecond + 1};

ScannedDirectory directory(std::string_view name, std::uint32_t subdirectories,
                           ScanState state = ScanState::kRead, DirectoryStamp stamp = kStamp) {
    return {.name = name, .subdirectoryCount = subdirectories, .state = state, .stamp = stamp};
}

/// Two scans, one of them of a tree.
std::vector<EncodedScan> someScans() {
    ScanWriter tree({"/usr", kBegan, {{"follow", ""}, {"exclude", "*.o"}}});
    tree.add(directory("", 2));
    tree.add(directory("bin", 1, ScanState::kRead, {5, 60, -3, -4}));
    tree.add(directory("x", 0, ScanState::kUnreadable, {}));
    tree.add(directory("lib", 0, ScanState::kLeftOut,
                       {~std::uint64_t{0}, ~std::uint64_t{0}, INT64_MIN, INT64_MAX}));
    ScanWriter alone({"a\nb\xFF", -1, {}});
    alone.add(directory("", 0));
    return {std::move(tree).finish(), std::move(alone).finish()};
}

TEST(ScanRecord, comesBack) {
    const std::vector<std::byte> record = joinScans(someScans());
    const std::vector<Scan> scans = decodeScans(record);
    ASSERT_EQ(scans.size(), 2U);
    EXPECT_EQ(scans[0].root, "/usr");
    EXPECT_EQ(scans[0].began, kBegan);
    EXPECT_EQ(scans[0].options, (ScanOptions{{"follow", ""}, {"exclude", "*.o"}}));
    EXPECT_EQ(scans[1].root, "a\nb\xFF");
    EXPECT_EQ(scans[1].began, -1);

    const auto& directories = scans[0].directories;
    ASSERT_EQ(directories.size(), 4U);
    EXPECT_EQ(directories[1].name, "bin");
    EXPECT_EQ(directories[1].stamp, (DirectoryStamp{5, 60, -3, -4}));
    EXPECT_EQ(directories[2].state, ScanState::kUnreadable);
    EXPECT_EQ(directories[2].stamp, DirectoryStamp{});
    EXPECT_EQ(directories[3].stamp,
              (DirectoryStamp{~std::uint64_t{0}, ~std::uint64_t{0}, INT64_MIN, INT64_MAX}));
}

TEST(ScanRecord, knowsWhichDirectoriesAreBelowWhich) {
    const std::vector<std::byte> record = joinScans(someScans());
    const std::vector<Scan> scans = decodeScans(record);
    std::vector<std::uint32_t> parents;
    std::vector<std::uint32_t> ends;
    std::vector<std::uint32_t> depths;
    for (const ScannedDirectory& one : scans[0].directories) {
        parents.push_back(one.parent);
        ends.push_back(one.end);
        depths.push_back(one.depth);
    }
    EXPECT_THAT(parents, ElementsAre(0, 0, 1, 0));
    EXPECT_THAT(ends, ElementsAre(4, 3, 3, 4));
    EXPECT_THAT(depths, ElementsAre(0, 1, 2, 1));
}

TEST(ScanRecord, isTakenApartAndJoinedAsItWas) {
    const std::vector<std::byte> record = joinScans(someScans());
    const std::vector<EncodedScan> apart = splitScans(record);
    ASSERT_EQ(apart.size(), 2U);
    EXPECT_EQ(apart[0].head.root, "/usr");
    EXPECT_EQ(apart[0].directoryCount, 4U);
    EXPECT_EQ(joinScans(apart), record);
    EXPECT_TRUE(splitScans({}).empty());
    EXPECT_TRUE(decodeScans({}).empty());
}

TEST(ScanRecord, isCopiedDirectoryByDirectory) {
    const std::vector<std::byte> record = joinScans(someScans());
    const std::vector<Scan> scans = decodeScans(record);
    ScanWriter again(scans[0]);
    again.copy(scans[0], 0, 2);
    again.copy(scans[0], 2, 4);
    EXPECT_TRUE(std::move(again).finish().saysTheSameAs(someScans()[0]));
}

TEST(ScanRecord, hasDirectoriesReadAgainThatMayChangeWithoutASign) {
    const auto stateOf = [](ScanState state, std::int64_t modified, std::int64_t changed) {
        ScanWriter writer({"/", kBegan, {}});
        writer.add(directory("", 0, state, {1, 1, modified, changed}));
        const std::vector<EncodedScan> scans{std::move(writer).finish()};
        const std::vector<std::byte> record = joinScans(scans);
        return decodeScans(record).front().directories.front().state;
    };
    const std::int64_t settled = kBegan - 2 * kASecond - 1;
    EXPECT_EQ(stateOf(ScanState::kRead, settled, settled), ScanState::kRead);
    EXPECT_EQ(stateOf(ScanState::kRead, settled + 1, settled), ScanState::kReadAgain);
    EXPECT_EQ(stateOf(ScanState::kRead, settled, settled + 1), ScanState::kReadAgain);
    EXPECT_EQ(stateOf(ScanState::kRead, kBegan + kASecond, settled), ScanState::kReadAgain);
    EXPECT_EQ(stateOf(ScanState::kUnreadable, kBegan, kBegan), ScanState::kUnreadable);
}

TEST(ScanRecord, takesSomeThirtyBytesADirectory) {
    constexpr std::size_t kCount = 10'000;
    std::mt19937_64 random(1);
    ScanWriter writer({"/data", kBegan + 2'000'000'000 * kASecond, {}});
    writer.add(directory("", kCount));
    for (std::size_t i = 0; i < kCount; ++i) {
        const auto time = static_cast<std::int64_t>(random() % (std::uint64_t{1} << 60));
        writer.add(directory("folder-" + std::to_string(kCount + i), 0, ScanState::kRead,
                             {5, random() % 10'000'000, time, time}));
    }
    EXPECT_LE(std::move(writer).finish().tree.size(), 32 * kCount);
}

TEST(ScanRecord, isRefusedIfItsTreeCannotBe) {
    const auto isRefused = [](const std::vector<ScannedDirectory>& directories) {
        ScanWriter writer({"/", kBegan, {}});
        for (const ScannedDirectory& one : directories) writer.add(one);
        const std::vector<EncodedScan> scans{std::move(writer).finish()};
        const std::vector<std::byte> record = joinScans(scans);
        try {
            decodeScans(record);
            return false;
        } catch (const Error& error) {
            return error.kind() == ErrorKind::kDamaged;
        }
    };
    EXPECT_FALSE(isRefused({directory("", 1), directory("a", 0)}));
    EXPECT_TRUE(isRefused({}));
    EXPECT_TRUE(isRefused({directory("root", 0)}));
    EXPECT_TRUE(isRefused({directory("", 2), directory("a", 0)}));
    EXPECT_TRUE(isRefused({directory("", 0), directory("a", 0)}));
    EXPECT_TRUE(isRefused({directory("", 2), directory("b", 0), directory("a", 0)}));
    EXPECT_TRUE(isRefused({directory("", 2), directory("a", 0), directory("a", 0)}));
    for (const std::string_view name : {"", ".", "..", "a/b"})
        EXPECT_TRUE(isRefused({directory("", 1), directory(name, 0)})) << name;
    EXPECT_TRUE(isRefused({directory("", 1), directory(std::string_view("a\0b", 3), 0)}));
}

// However long it is: five bytes could be a directory.
TEST(ScanRecord, isRefusedIfItHasMoreDirectoriesThanNumbersReach) {
    const ZeroPages pages(5 * (std::uint64_t{1} << 32) + 4096);
    std::size_t end = 0;
    const auto put = [&](std::uint64_t number) {
        for (; number > 0x7F; number >>= 7) pages.bytes()[end++] = std::byte(number | 0x80);
        pages.bytes()[end++] = std::byte(number);
    };
    put(1);                            // scans
    put(pages.bytes().size() - 1024);  // bytes of the first
    for (int head = 0; head < 3; ++head) put(0);
    put(std::uint64_t{1} << 32);
    try {
        decodeScans(pages.bytes());
        FAIL() << "is taken";
    } catch (const Error& error) {
        EXPECT_EQ(error.kind(), ErrorKind::kDamaged);
        EXPECT_STREQ(error.what(), "the scans hold a tree that cannot be");
    }
}

TEST(ScanRecord, isRefusedAtEveryShorterLengthAndWithMoreAfterIt) {
    const std::vector<std::byte> record = joinScans(someScans());
    for (std::size_t size = 1; size < record.size(); ++size)
        EXPECT_THROW(decodeScans(std::span(record).first(size)), Error) << size;
    std::vector<std::byte> longer = record;
    longer.push_back({});
    EXPECT_THROW(decodeScans(longer), Error);
    EXPECT_THROW(splitScans(longer), Error);
}

TEST(ScanRecord, isReadOrRefusedWhateverItsBytesAre) {
    const std::vector<std::byte> whole = joinScans(someScans());
    std::mt19937_64 random(2);
    std::size_t refusals = 0;
    for (int round = 0; round < 50'000; ++round) {
        std::vector<std::byte> record = whole;
        for (auto changes = random() % 3 + 1; changes > 0; --changes)
            record[random() % record.size()] = static_cast<std::byte>(random());
        try {
            for (const Scan& scan : decodeScans(record))
                for (std::size_t i = 1; i < scan.directories.size(); ++i) {
                    const ScannedDirectory& one = scan.directories[i];
                    ASSERT_LT(one.parent, i);
                    ASSERT_GT(one.end, i);
                    ASSERT_LE(one.end, scan.directories[one.parent].end);
                    ASSERT_EQ(one.depth, scan.directories[one.parent].depth + 1);
                }
        } catch (const Error& error) {
            ASSERT_EQ(error.kind(), ErrorKind::kDamaged);
            ++refusals;
        }
    }
    EXPECT_GT(refusals, 1000U);
}

}  // namespace
}  // namespace zqpaths
