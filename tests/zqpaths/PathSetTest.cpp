#include "zqpaths/PathSet.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <random>
#include <set>
#include <stdexcept>
#include <thread>

#include "tests/support/SetFiles.hpp"
#include "tests/zqpaths/SegmentedSets.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths {
namespace {

using testing::HasSubstr;
using Numbers = std::vector<std::uint64_t>;
using Paths = std::vector<std::string>;

constexpr SegmentForm kImage = SegmentForm::kImage;
constexpr SegmentForm kPacked = SegmentForm::kPacked;

/// Six paths in three segments.
/// As many paths that threads are used, and whole pieces of them.
SegmentedSet manyPaths() {
    std::vector<SegmentContent> segments;
    std::size_t next = 0;
    for (const std::size_t size : {50000U, 1U, 70000U}) {
        segments.push_back({kImage, {}});
        for (std::size_t i = 0; i < size; ++i, ++next)
            segments.back().paths.push_back("dir" + std::to_string(next / 50) + "/file" +
                                            std::to_string(next % 1000));
    }
    return SegmentedSet(segments);
}

Refusal noPath(const SegmentedSet& made, const std::string& number) {
    return {ErrorKind::kWrongUse, made.file() + ": there is no path number " + number +
                                      ", the set has " + std::to_string(made.paths().size())};
}

void expectRefusal(const Refusal& refusal, const Refusal& expected) {
    EXPECT_EQ(refusal.kind, expected.kind);
    EXPECT_EQ(refusal.text, expected.text);
}

TEST(PathSet, givesThePathsByTheirNumbers) {
    const SegmentedSet made = sampleSet();
    const PathSet set = made.open();
    ASSERT_EQ(set.size(), 6U);
    EXPECT_EQ(set.file(), made.file());
    for (std::uint64_t number = 1; number <= 6; ++number)
        EXPECT_EQ(set.path(number), made.paths()[number - 1]);
    std::string text = "before ";
    set.appendPath(3, text);
    EXPECT_EQ(text, "before plain");
}

TEST(PathSet, hasTheFingerprintOfItsFileAndOfCopies) {
    const SegmentedSet made = sampleSet();
    const PathSet set = made.open();
    EXPECT_EQ(made.open().fingerprint(), set.fingerprint());
    const PathSet sameSet = set;
    EXPECT_EQ(sameSet.fingerprint(), set.fingerprint());
    const std::string copy = made.file() + ".copy";
    std::filesystem::copy_file(made.file(), copy);
    EXPECT_EQ(PathSet::open(copy).fingerprint(), set.fingerprint());
}

TEST(PathSet, hasAnotherFingerprintAfterAnAppend) {
    const SegmentedSet made = sampleSet();
    const PathSet before = made.open();
    PathSetWriter(made.file(), PathSetWriter::Mode::kAppend).commit();  // of nothing
    EXPECT_EQ(made.open().fingerprint(), before.fingerprint());
    PathSetWriter writer(made.file(), PathSetWriter::Mode::kAppend);
    writer.add("one more");
    writer.commit();
    EXPECT_NE(made.open().fingerprint(), before.fingerprint());
    EXPECT_EQ(PathSet(before).fingerprint(), before.fingerprint());  // of what was opened
}

// Each has as many paths and bytes as the one before, so that only sums tell them apart.
TEST(PathSet, hasAnotherFingerprintForOtherPathsInItsPlace) {
    const SegmentedSet made = sampleSet();
    std::set<std::uint64_t> fingerprints;
    for (const Paths& paths : {Paths{"a/b", "a/c"}, Paths{"a/c", "a/b"}, Paths{"a/b", "a/d"}}) {
        PathSetWriter writer(made.file(), PathSetWriter::Mode::kReplace);
        for (const std::string& path : paths) writer.add(path);
        writer.commit();
        fingerprints.insert(made.open().fingerprint());
    }
    EXPECT_EQ(fingerprints.size(), 3U);
}

TEST(PathSet, givesPathsInTheOrderOfTheNumbersGiven) {
    const SegmentedSet made = sampleSet();
    const Numbers numbers{6, 1, 2, 3, 4, 4, 3, 2, 5};
    std::vector<Numbered> expected;
    for (const std::uint64_t number : numbers)
        expected.emplace_back(number, made.paths()[number - 1]);
    EXPECT_EQ(visitedBy([&](auto visit) { made.open().paths(numbers, visit); }), expected);
    EXPECT_EQ(visitedBy([&](auto visit) { made.open().paths({}, visit); }),
              std::vector<Numbered>{});
}

/// So many numbers of a set in a chance order, with some twice, neighbours and ranges among them.
Numbers chanceNumbers(std::size_t count, std::uint64_t largest) {
    std::mt19937 random(static_cast<unsigned>(count));
    Numbers numbers;
    while (numbers.size() < count) {
        const std::uint64_t first = 1 + random() % largest;
        const std::size_t range = random() % 4 == 0 ? random() % 20 : 1;
        for (std::size_t i = 0; i < range && numbers.size() < count; ++i)
            numbers.push_back(std::min(first + i, largest));
    }
    return numbers;
}

TEST(PathSet, givesManyPathsByNumberOnTheCallingThread) {
    const SegmentedSet made = manyPaths();
    const PathSet set = made.open();
    const std::thread::id caller = std::this_thread::get_id();
    for (const std::size_t count : {1U, 7U, 500U, 1999U, 2000U, 4097U, 50000U}) {
        Numbers numbers = chanceNumbers(count, set.size());
        for (const bool ascend : {false, true}) {
            if (ascend) std::sort(numbers.begin(), numbers.end());
            std::size_t next = 0;
            set.paths(numbers, [&](std::uint64_t number, std::string_view path) {
                ASSERT_EQ(std::this_thread::get_id(), caller);
                ASSERT_EQ(number, numbers[next++]);
                ASSERT_EQ(path, made.paths()[number - 1]);
            });
            ASSERT_EQ(next, count);
        }
    }
}

TEST(PathSet, givesRangesUpAndDown) {
    const SegmentedSet made = sampleSet();
    const PathSet set = made.open();
    std::vector<Numbered> all = numberedWhere(made.paths(), [](std::string_view) { return true; });
    EXPECT_EQ(visitedBy([&](auto visit) { set.forEach(visit); }), all);
    EXPECT_EQ(visitedBy([&](auto visit) { set.forEach(2, 4, visit); }),
              std::vector<Numbered>(all.begin() + 1, all.begin() + 4));
    EXPECT_EQ(visitedBy([&](auto visit) { set.forEach(4, 4, visit); }),
              std::vector<Numbered>(all.begin() + 3, all.begin() + 4));
    std::reverse(all.begin(), all.end());
    EXPECT_EQ(visitedBy([&](auto visit) { set.forEach(6, 1, visit); }), all);
}

TEST(PathSet, givesManyPathsInOrderOnTheCallingThread) {
    const SegmentedSet made = manyPaths();
    const PathSet set = made.open();
    const std::thread::id caller = std::this_thread::get_id();
    std::uint64_t next = 1;
    set.forEach([&](std::uint64_t number, std::string_view path) {
        ASSERT_EQ(std::this_thread::get_id(), caller);
        ASSERT_EQ(number, next++);
        ASSERT_EQ(path, made.paths()[number - 1]);
    });
    EXPECT_EQ(next, made.paths().size() + 1);
    set.forEach(120000, 3, [&](std::uint64_t number, std::string_view path) {
        ASSERT_EQ(number, next == 120002 ? 120000 : next - 1);
        next = number;
        ASSERT_EQ(path, made.paths()[number - 1]);
    });
    EXPECT_EQ(next, 3U);
}

TEST(PathSet, isIteratedInOrder) {
    const SegmentedSet made = manyPaths();
    Paths paths;
    const PathSet set = made.open();
    for (const std::string_view path : set) paths.emplace_back(path);
    EXPECT_EQ(paths, made.paths());
    auto iterator = set.begin();
    EXPECT_EQ(iterator.number(), 1U);
    iterator++;
    EXPECT_EQ(iterator.number(), 2U);
    EXPECT_EQ(*iterator, made.paths()[1]);
}

TEST(PathSet, stopsWhenTheVisitorSaysSo) {
    const SegmentedSet made = manyPaths();
    const PathSet set = made.open();
    const Numbers numbers{7, 8, 9, 1};
    int count = 0;
    const auto three = [&](std::uint64_t, std::string_view) { return ++count % 3 != 0; };
    set.forEach(three);
    set.forEach(120000, 1, three);
    set.paths(numbers, three);
    set.paths(chanceNumbers(20000, set.size()), three);
    set.find(Pattern::text("file"), three);
    set.find(Pattern::regex("."), three);
    set.under("dir0", three);
    set.walk(three);
    EXPECT_EQ(count, 8 * 3);
    set.findNumbers(Pattern::text("file1"), [&](auto, auto) { return ++count % 3 != 0; });
    EXPECT_EQ(count, 9 * 3);
}

TEST(PathSet, passesOnWhatTheVisitorThrows) {
    const SegmentedSet made = manyPaths();
    const PathSet set = made.open();
    int count = 0;
    const auto fail = [&](std::uint64_t, std::string_view) {
        if (++count % 5 == 0) throw std::out_of_range("mine");
    };
    EXPECT_THROW(set.forEach(fail), std::out_of_range);
    EXPECT_THROW(set.paths(chanceNumbers(20000, set.size()), fail), std::out_of_range);
    EXPECT_THROW(set.find(Pattern::text("file"), fail), std::out_of_range);
    EXPECT_THROW(set.under("dir0", fail), std::out_of_range);
    EXPECT_THROW(set.walk(fail), std::out_of_range);
    EXPECT_EQ(count, 25);
}

TEST(PathSet, refusesNumbersThatThereAreNotBeforeTheFirstVisit) {
    const SegmentedSet made = sampleSet();
    const PathSet set = made.open();
    const auto fail = [](std::uint64_t, std::string_view) { ADD_FAILURE(); };
    expectRefusal(refusalOf([&] { set.path(0); }), noPath(made, "0"));
    expectRefusal(refusalOf([&] { set.path(7); }), noPath(made, "7"));
    expectRefusal(refusalOf([&] { set.paths(Numbers{1, 2, 7}, fail); }), noPath(made, "7"));
    Numbers many(5000, 1);
    many.back() = 7;
    expectRefusal(refusalOf([&] { set.paths(many, fail); }), noPath(made, "7"));
    expectRefusal(refusalOf([&] { set.forEach(0, 2, fail); }), noPath(made, "0"));
    expectRefusal(refusalOf([&] { set.forEach(7, 2, fail); }), noPath(made, "7"));
    expectRefusal(refusalOf([&] { set.forEach(2, 7, fail); }), noPath(made, "7"));
}

TEST(PathSet, findsTheLowestNumberOfAPath) {
    const SegmentedSet made = sampleSet();
    const PathSet set = made.open();
    EXPECT_EQ(set.numberOf("/usr/bin/b"), 2U);
    EXPECT_EQ(set.numberOf("plain"), 3U);
    EXPECT_EQ(set.numberOf("/usr/lib/caf\xC3\xA9\xFF"), 4U);
    EXPECT_EQ(set.numberOf("a//b/"), 6U);
    EXPECT_TRUE(set.contains("a//b/"));
    for (const char* const path :
         {"", "/", "usr/bin/b", "/usr/bin", "/usr/bin/b/", "a/b/", "a//b", "plain/", "caf"})
        EXPECT_FALSE(set.contains(path)) << path;
    EXPECT_FALSE(set.contains(std::string_view("plain\0", 6)));
    EXPECT_FALSE(set.contains(std::string_view("\0plain", 6)));
}

TEST(PathSet, walksFolderByFolderSegmentAfterSegment) {
    const SegmentedSet made({{kImage, {"b/x", "a/x", "b/y", "plain"}}, {kPacked, {"b/z", "a/y"}}});
    EXPECT_EQ(visitedBy([&](auto visit) { made.open().walk(visit); }),
              (std::vector<Numbered>{
                  {1, "b/x"}, {2, "b/y"}, {3, "a/x"}, {4, "plain"}, {5, "b/z"}, {6, "a/y"}}));
}

TEST(PathSet, mayBeEmpty) {
    const SegmentedSet made({});
    const PathSet set = made.open();
    const auto fail = [](std::uint64_t, std::string_view) { ADD_FAILURE(); };
    EXPECT_EQ(set.size(), 0U);
    set.forEach(fail);
    set.paths({}, fail);
    set.under("", fail);
    set.under("a", fail);
    set.find(Pattern::text(""), fail);
    set.walk(fail);
    for (const std::string_view path : set) ADD_FAILURE() << path;
    EXPECT_EQ(set.count(Pattern::text("")), 0U);
    EXPECT_FALSE(set.contains("a"));
    EXPECT_TRUE(set.verify().empty());
    EXPECT_TRUE(set.segments().empty());
    expectRefusal(refusalOf([&] { set.path(1); }), noPath(made, "1"));
}

TEST(PathSet, tellsItsSegments) {
    const SegmentedSet made = sampleSet();
    const auto segments = made.open().segments();
    ASSERT_EQ(segments.size(), 3U);
    EXPECT_TRUE(segments[1].isPacked);
    EXPECT_FALSE(segments[2].isPacked);
    EXPECT_EQ(segments[2].firstNumber, 5U);
    EXPECT_EQ(segments[2].pathCount, 2U);
    EXPECT_EQ(segments[2].textSize, 11U + 6U);
    EXPECT_EQ(segments[2].offset % 4096, 0U);
    EXPECT_GT(segments[2].size, 0U);
}

TEST(PathSet, isSharedByItsCopies) {
    const SegmentedSet made = sampleSet();
    PathSet set = made.open();
    const PathSet copy = set;
    set = SegmentedSet({}).open();
    EXPECT_EQ(copy.path(3), "plain");
    const PathSet moved = std::move(set);
    EXPECT_EQ(moved.size(), 0U);
}

TEST(PathSet, isReadByManyThreads) {
    const SegmentedSet made = sampleSet();
    const PathSet set = made.open();
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 8; ++i)
        threads.emplace_back([&, i] {
            for (std::uint64_t step = 0; step < 200; ++step) {
                const std::uint64_t number = 1 + (step + i) % 6;
                EXPECT_EQ(set.path(number), made.paths()[number - 1]);
                EXPECT_EQ(set.numberOf("plain"), 3U);
            }
            EXPECT_EQ(set.count(Pattern::text("bin")), 3U);
        });
    for (std::thread& thread : threads) thread.join();
}

// --- Damage.

void changeByte(const std::string& file, std::uint64_t offset) {
    std::string content = contentOf(file);
    content[offset] = static_cast<char>(content[offset] ^ 0x20);
    writeContent(file, content);
}

TEST(PathSet, isVerifiedWhole) {
    EXPECT_TRUE(sampleSet().open().verify().empty());
    EXPECT_TRUE(manyPaths().open().verify().empty());
}

TEST(PathSet, tellsHowFarItIsVerified) {
    for (const auto& make : {sampleSet, manyPaths}) {
        const SegmentedSet made = make();
        const PathSet set = made.open();
        std::uint64_t size = 0;
        for (const PathSet::Segment& segment : set.segments()) size += segment.size;
        std::atomic<std::uint64_t> summed{0};
        std::atomic<std::uint64_t> read{0};
        const auto watch = [&](WorkStep step, std::uint64_t items) {
            if (step == WorkStep::kSumming) summed += items;
            if (step == WorkStep::kReading) read += items;
        };
        EXPECT_TRUE(set.verify(watch).empty());
        EXPECT_EQ(summed, size);
        EXPECT_EQ(read, set.size());
    }
}

TEST(PathSet, namesTheSegmentsThatAreDamaged) {
    const SegmentedSet made = sampleSet();
    const auto segments = made.open().segments();
    changeByte(made.file(), segments[1].offset + segments[1].size - 10);
    changeByte(made.file(), segments[2].offset + 450);
    const PathSet set = made.open();
    std::string texts;
    for (const Error& error : set.verify()) {
        EXPECT_EQ(error.kind(), ErrorKind::kDamaged);
        texts += std::string(error.what()) + '\n';
    }
    EXPECT_THAT(texts, HasSubstr(made.file() + ": segment 2: "));
    EXPECT_THAT(texts, HasSubstr(made.file() + ": segment 3: "));
    EXPECT_THAT(texts, testing::Not(HasSubstr("segment 1")));
    EXPECT_EQ(set.path(1), "/usr/bin/a");
    EXPECT_EQ(refusalOf([&] {
                  set.paths(Numbers{1, 3}, [](auto, auto) {});
              }).kind,
              ErrorKind::kDamaged);
    const Refusal refusal = refusalOf([&] { set.path(3); });
    EXPECT_EQ(refusal.kind, ErrorKind::kDamaged);
    EXPECT_THAT(refusal.text, HasSubstr(made.file() + ": segment 2: "));
}

TEST(PathSet, refusesAFileThatHasBecomeShorter) {
    const SegmentedSet made = sampleSet();
    const PathSet set = made.open();
    const auto segments = set.segments();
    std::filesystem::resize_file(made.file(), segments[2].offset);
    const auto fail = [](std::uint64_t, std::string_view) { ADD_FAILURE(); };
    const std::vector<std::function<void()>> calls{[&] { set.path(1); },
                                                   [&] { set.paths(Numbers{1}, fail); },
                                                   [&] { set.forEach(fail); },
                                                   [&] { set.forEach(1, 2, fail); },
                                                   [&] { set.begin(); },
                                                   [&] { set.numberOf("plain"); },
                                                   [&] { set.under("/usr", fail); },
                                                   [&] { set.under("", fail); },
                                                   [&] { set.find(Pattern::text("a"), fail); },
                                                   [&] { set.count(Pattern::text("a")); },
                                                   [&] { set.findNumbers(Pattern::text("a"), {}); },
                                                   [&] { set.walk(fail); }};
    for (const auto& call : calls) EXPECT_EQ(refusalOf(call).kind, ErrorKind::kDamaged);
    ASSERT_EQ(set.verify().size(), 1U);
    EXPECT_EQ(set.verify().front().kind(), ErrorKind::kDamaged);
}

/// A segment whose entry in the directory says something else than its bytes.
template <class Change>
PathSet setWithEntry(const std::string& file, SegmentForm form, Change change) {
    CollectedPaths paths;
    paths.append("a/b");
    paths.append("a/c");
    const BuiltSegment built = buildSegment(paths, form, 1);
    SegmentBytes bytes = built.view();
    change(bytes);
    SetFileWriter writer(file, SetFileWriter::Mode::kReplace);
    writer.append(bytes);
    writer.commit();
    return PathSet::open(file);
}

TEST(PathSet, refusesSegmentsThatAreNotWhatTheDirectorySays) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    const auto refusal = [&](SegmentForm form, auto change) {
        const PathSet set = setWithEntry(file, form, change);
        EXPECT_EQ(set.verify().size(), 1U);
        return refusalOf([&] { set.path(1); }).text;
    };
    for (const SegmentForm form : {kImage, kPacked})
        EXPECT_EQ(refusal(form, [](SegmentBytes& bytes) { bytes.pathCount = 4; }),
                  file + ": segment 1: it has 2 paths, the directory says 4");
    for (const std::uint64_t size : {0U, 2U, 20U})
        EXPECT_THAT(refusal(kPacked, [&](SegmentBytes& bytes) { bytes.treeStringSize = size; }),
                    HasSubstr(file + ": segment 1: "));
    const PathSet set =
        setWithEntry(file, kImage, [](SegmentBytes& bytes) { bytes.textSize = 100; });
    EXPECT_EQ(set.path(1), "a/b");
    ASSERT_EQ(set.verify().size(), 1U);
    EXPECT_EQ(set.verify().front().what(),
              file + ": segment 1: its paths are 8 bytes of text, the directory says 100");
}

TEST(PathSet, verifiesWhatItRemembersOfDirectories) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    ScanWriter scan({"/usr", 1, {}});
    scan.add({});
    EncodedScan damaged = std::move(scan).finish();
    damaged.tree.assign(9, std::byte{0xFF});
    PathSetWriter writer(file);
    writer.add("/usr/a");
    recordScans(writer, {damaged});
    writer.commit();
    const PathSet set = PathSet::open(file);
    ASSERT_EQ(set.verify().size(), 1U);
    EXPECT_EQ(set.verify().front().what(), refusalOf([&] { scansOf(set); }).text);
}

TEST(PathSet, isNotOpenedWithoutAFile) {
    const test_support::TemporaryTree tree;
    EXPECT_EQ(refusalOf([&] { PathSet::open(tree.pathOf("none.zqp")); }).kind,
              ErrorKind::kNotFound);
}

// --- Against a plain list.

void expectSamePaths(const PathSet& set, const Paths& paths, std::mt19937& random) {
    const auto all = numberedWhere(paths, [](std::string_view) { return true; });
    EXPECT_EQ(visitedBy([&](auto visit) { set.forEach(visit); }), all);
    for (int i = 0; i < 20; ++i) {
        const std::uint64_t first = 1 + random() % paths.size();
        const std::uint64_t last = 1 + random() % paths.size();
        std::vector<Numbered> expected(
            all.begin() + static_cast<std::ptrdiff_t>(std::min(first, last)) - 1,
            all.begin() + static_cast<std::ptrdiff_t>(std::max(first, last)));
        if (last < first) std::reverse(expected.begin(), expected.end());
        EXPECT_EQ(visitedBy([&](auto visit) { set.forEach(first, last, visit); }), expected);
    }
    Numbers numbers;
    std::vector<Numbered> expected;
    for (int i = 0; i < 300; ++i) {
        const bool goesOn = i > 0 && random() % 3 > 0 && numbers.back() < paths.size();
        numbers.push_back(goesOn ? numbers.back() + 1 : 1 + random() % paths.size());
        expected.emplace_back(numbers.back(), paths[numbers.back() - 1]);
    }
    EXPECT_EQ(visitedBy([&](auto visit) { set.paths(numbers, visit); }), expected);
}

TEST(PathSet, answersAsAPlainListDoes) {
    std::mt19937 random(5);
    for (unsigned seed = 0; seed < 12; ++seed) {
        const Paths paths = randomPaths(400, seed);
        const SegmentedSet made = SegmentedSet::ofPaths(paths, 1 + seed % 5, random);
        const PathSet set = made.open();
        expectSamePaths(set, made.paths(), random);
        for (const std::string& path : made.paths()) {
            const auto first = std::find(made.paths().begin(), made.paths().end(), path);
            ASSERT_EQ(set.path(static_cast<std::uint64_t>(first - made.paths().begin()) + 1), path);
            ASSERT_EQ(set.numberOf(path),
                      static_cast<std::uint64_t>(first - made.paths().begin()) + 1);
        }
        for (const std::string& path : randomPaths(200, seed + 1000))
            EXPECT_EQ(set.contains(path), std::find(made.paths().begin(), made.paths().end(),
                                                    path) != made.paths().end());
        EXPECT_TRUE(set.verify().empty());
    }
}

}  // namespace
}  // namespace zqpaths
