// PathSet on a manifest: whatever is asked of it, it answers as a set in one file would.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SegmentedSets.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifest.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"
#include "zqpaths/set/SetStatistics.hpp"
#include "zqpaths/totals/FolderTotals.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths {
namespace {

using Paths = std::vector<std::string>;

Paths madePaths(std::size_t count, std::mt19937& random) {
    Paths paths(count);
    for (std::string& path : paths)
        path = "d" + std::to_string(random() % 4) + "/e" + std::to_string(random() % 3) + "/f" +
               std::to_string(random() % 20);
    return paths;
}

/// Set files, and the rows of a manifest on them by chance; and the same paths in one file.
class ManyFiles {
public:
    explicit ManyFiles(unsigned seed) {
        std::mt19937 random(seed);
        for (int i = 0; i < 3; ++i)
            files_.emplace_back(new SegmentedSet(
                SegmentedSet::ofPaths(madePaths(8 + random() % 40, random), 3, random)));
        SetManifestWriter writer(manifest());
        PathSetWriter whole(tree_.pathOf("whole.zqp"));
        for (int row = 0; row < 6; ++row) {
            const SegmentedSet& file = *files_[random() % files_.size()];
            if (row == 3) markSomeGone(file, random);
            const std::uint64_t first = random() % 3;
            const std::uint64_t count = 1 + random() % (3 - first);
            if (row >= 3) addRow(writer, whole, file, first, count);
        }
        writer.commit();
        whole.commit();
    }

    std::string manifest() const { return tree_.pathOf("all.zqs"); }
    PathSet open() const { return PathSet::open(manifest()); }
    PathSet whole() const { return PathSet::open(tree_.pathOf("whole.zqp")); }

private:
    static void markSomeGone(const SegmentedSet& file, std::mt19937& random) {
        PathSetWriter writer(file.file(), PathSetWriter::Mode::kAppend);
        for (int i = 0; i < 9; ++i) writer.markGone(1 + random() % writer.size());
        writer.commit();
    }

    static void addRow(SetManifestWriter& writer, PathSetWriter& whole, const SegmentedSet& file,
                       std::uint64_t first, std::uint64_t count) {
        writer.addSegments(file.file(), first, count);
        const PathSet set = file.open();
        const auto segments = set.segments();
        const std::uint64_t last =
            segments[first + count - 1].firstNumber + segments[first + count - 1].pathCount - 1;
        for (std::uint64_t number = segments[first].firstNumber; number <= last; ++number) {
            whole.add(set.path(number));
            if (set.isGone(number)) whole.markGone(whole.size());
        }
    }

    test_support::TemporaryTree tree_;
    std::vector<std::unique_ptr<SegmentedSet>> files_;
};

class SetsOfSets : public testing::TestWithParam<unsigned> {
protected:
    ManyFiles made_{GetParam()};
    PathSet set_ = made_.open();
    PathSet whole_ = made_.whole();
};
INSTANTIATE_TEST_SUITE_P(Seeds, SetsOfSets, testing::Range(0U, 12U));

TEST_P(SetsOfSets, giveTheirPathsByNumber) {
    ASSERT_EQ(set_.size(), whole_.size());
    std::vector<std::uint64_t> numbers;
    std::mt19937 random(GetParam());
    for (std::uint64_t number = 1; number <= set_.size(); ++number) {
        ASSERT_EQ(set_.path(number), whole_.path(number));
        numbers.push_back(1 + random() % set_.size());
    }
    const auto visited = visitedBy([&](auto visit) { set_.paths(numbers, visit); });
    EXPECT_EQ(visited, visitedBy([&](auto visit) { whole_.paths(numbers, visit); }));
    EXPECT_THROW(set_.path(0), Error);
    EXPECT_THROW(set_.path(set_.size() + 1), Error);
}

TEST_P(SetsOfSets, areGoneThroughInEveryWay) {
    const auto same = [&](auto visitAll) {
        EXPECT_EQ(visitedBy([&](auto visit) { visitAll(set_, visit); }),
                  visitedBy([&](auto visit) { visitAll(whole_, visit); }));
    };
    const std::uint64_t last = set_.size();
    same([](const PathSet& set, PathVisitor visit) { set.forEach(visit); });
    same([&](const PathSet& set, PathVisitor visit) { set.forEach(last / 3 + 1, last, visit); });
    same([&](const PathSet& set, PathVisitor visit) { set.forEach(last, 1, visit); });
    same([](const PathSet& set, PathVisitor visit) { set.under("d1", visit); });
    same([](const PathSet& set, PathVisitor visit) { set.under("d2/e1", visit); });
    same([](const PathSet& set, PathVisitor visit) { set.find(Pattern::glob("*7"), visit); });
    Paths paths;
    for (const std::string_view path : set_) paths.emplace_back(path);
    EXPECT_EQ(paths.size(), last);
    EXPECT_EQ(paths.back(), whole_.path(last));
}

TEST_P(SetsOfSets, areSearchedAmongSomeNumbers) {
    const std::uint64_t last = set_.size();
    for (const auto& pattern : {Pattern::text("e1"), Pattern::regex("f1?2$"), Pattern::glob("**")})
        for (const PathNumbers among : {PathNumbers{1, last}, PathNumbers{2, last / 2 + 1},
                                        PathNumbers{last / 2 + 1, last}, PathNumbers{last, last}}) {
            auto expected = visitedBy([&](auto visit) { whole_.find(pattern, visit); });
            std::erase_if(expected, [&](const Numbered& path) {
                return path.first < among.first || path.first > among.last;
            });
            EXPECT_EQ(visitedBy([&](auto visit) { set_.find(pattern, among, visit); }), expected);
            EXPECT_EQ(visitedBy([&](auto visit) { whole_.find(pattern, among, visit); }), expected);
            std::vector<std::uint64_t> numbers;
            set_.findNumbers(pattern, among, [&](std::uint64_t first, std::uint64_t end) {
                for (; first <= end; ++first) numbers.push_back(first);
                return true;
            });
            EXPECT_TRUE(std::ranges::equal(numbers, expected, {}, {}, &Numbered::first));
        }
    EXPECT_EQ(set_.count(Pattern::text("f1")), whole_.count(Pattern::text("f1")));
    EXPECT_THROW(set_.find(Pattern::text("f"), {1, last + 1}, [](auto, auto) {}), Error);
    EXPECT_THROW(set_.find(Pattern::text("f"), {0, last}, [](auto, auto) {}), Error);
}

TEST_P(SetsOfSets, tellTheLowestNumberOfAPath) {
    for (const std::string_view path : whole_) {
        const auto number = set_.numberOf(path);
        ASSERT_EQ(number, whole_.numberOf(path));
        // Of those that look through some segments each, the first that finds it has the lowest.
        std::optional<std::uint64_t> found;
        for (std::uint64_t segment = 0; !found && segment < set_.segmentCount(); ++segment)
            found = set_.numberOf(path, segment, 1);
        ASSERT_EQ(found, number);
    }
    EXPECT_EQ(set_.numberOf("d1/e1/none"), std::nullopt);
    EXPECT_THROW(set_.numberOf("d1", set_.segmentCount(), 1), Error);
}

TEST_P(SetsOfSets, knowWhichPathsAreGone) {
    ASSERT_EQ(set_.goneCount(), whole_.goneCount());
    ASSERT_EQ(set_.presentCount(), whole_.presentCount());
    for (std::uint64_t number = 1; number <= set_.size(); ++number) {
        ASSERT_EQ(set_.isGone(number), whole_.isGone(number));
        ASSERT_EQ(set_.goneCount(1, number), whole_.goneCount(1, number));
    }
    for (std::uint64_t place = 0; place < set_.goneCount(); ++place)
        ASSERT_EQ(set_.goneNumber(place), whole_.goneNumber(place));
    for (std::uint64_t place = 0; place < set_.presentCount(); ++place)
        ASSERT_EQ(set_.presentNumber(place), whole_.presentNumber(place));
}

TEST_P(SetsOfSets, areCountedAsOne) {
    const SetStatistics statistics = statisticsOf(set_, 5);
    const SetStatistics expected = statisticsOf(whole_, 5);
    EXPECT_EQ(statistics.pathCount, expected.pathCount);
    EXPECT_EQ(statistics.textSize, expected.textSize);
    EXPECT_EQ(statistics.folderCount, expected.folderCount);
    EXPECT_EQ(statistics.segmentCount, set_.segmentCount());
    EXPECT_EQ(statistics.largestFolders.front().fileCount,
              expected.largestFolders.front().fileCount);
    EXPECT_EQ(FolderTotals(set_).of(FolderTotals::kTop).filesBelow,
              FolderTotals(whole_).of(FolderTotals::kTop).filesBelow);
    EXPECT_TRUE(set_.verify().empty());
    std::uint64_t pathCount = 0;
    for (const PathSet::Segment& segment : set_.segments()) {
        EXPECT_EQ(segment.firstNumber, pathCount + 1);
        EXPECT_LT(segment.file, set_.fileCount());
        pathCount += segment.pathCount;
    }
    EXPECT_EQ(pathCount, set_.size());
}

// --- What is not there.

/// Three set files of ten paths each, and a manifest of them.
class BrokenSetsOfSets : public testing::Test {
protected:
    BrokenSetsOfSets() {
        SetManifestWriter writer(manifest());
        for (int i = 0; i < 3; ++i) {
            write(i, 10);
            writer.addSet(file(i));
        }
        writer.commit();
    }

    std::string manifest() const { return tree_.pathOf("all.zqs"); }
    std::string file(int i) const { return tree_.pathOf("part" + std::to_string(i) + ".zqp"); }

    void write(int i, int count) {
        PathSetWriter writer(file(i), PathSetWriter::Mode::kReplace);
        for (int k = 0; k < count; ++k)
            writer.add("part" + std::to_string(i) + "/" + std::to_string(k));
        writer.commit();
    }

private:
    test_support::TemporaryTree tree_;
};

TEST_F(BrokenSetsOfSets, nameAFileThatIsMissingWhenItIsNeeded) {
    std::filesystem::remove(file(1));
    const PathSet set = PathSet::open(manifest());
    EXPECT_EQ(set.path(10), "part0/9");
    EXPECT_EQ(set.path(21), "part2/0");
    const Refusal refusal = refusalOf([&] { set.path(11); });
    EXPECT_EQ(refusal.kind, ErrorKind::kNotFound);
    EXPECT_EQ(refusal.text, manifest() + ": " + file(1) + ": No such file or directory");
    EXPECT_EQ(refusalOf([&] { set.forEach([](auto, auto) {}); }).kind, ErrorKind::kNotFound);
    ASSERT_EQ(set.verify().size(), 1U);
    EXPECT_EQ(set.verify()[0].kind(), ErrorKind::kNotFound);
}

TEST_F(BrokenSetsOfSets, nameAFileThatWasChanged) {
    write(2, 11);
    const PathSet set = PathSet::open(manifest());
    const Refusal refusal = refusalOf([&] { set.path(30); });
    EXPECT_EQ(refusal.kind, ErrorKind::kDamaged);
    EXPECT_EQ(refusal.text,
              manifest() + ": " + file(2) + ": was changed since the set was made of it");
    EXPECT_EQ(set.verifyFile(2, {}).size(), 1U);
    EXPECT_TRUE(set.verifyFile(1, {}).empty());
}

TEST_F(BrokenSetsOfSets, nameAFileThatIsNoSet) {
    writeContent(file(0), "a file of somebody else");
    EXPECT_EQ(refusalOf([&] { PathSet::open(manifest()).path(1); }).kind, ErrorKind::kNotASet);
    std::filesystem::copy_file(manifest(), file(0),
                               std::filesystem::copy_options::overwrite_existing);
    EXPECT_EQ(refusalOf([&] { PathSet::open(manifest()).path(1); }).kind, ErrorKind::kNotASet);
}

TEST_F(BrokenSetsOfSets, refuseRowsThatTheirFileHasNot) {
    SetManifest manifestRead = decodeManifest(contentOf(manifest()));
    for (const ManifestRow row :
         {ManifestRow{0, 0, 1, 9, 0}, ManifestRow{0, 1, 1, 10, 0}, ManifestRow{0, 9, 1, 10, 0},
          ManifestRow{0, 0, 2, 10, 0}, ManifestRow{0, 0, 1, 10, 1}}) {
        manifestRead.rows[0] = row;
        writeContent(manifest(), encodeManifest(manifestRead));
        const PathSet set = PathSet::open(manifest());
        EXPECT_EQ(refusalOf([&] { set.path(1); }).kind, ErrorKind::kDamaged);
        EXPECT_EQ(set.verify().size(), 1U);
        EXPECT_EQ(PathSet::openPartial(manifest()).missing().size(), 1U);
    }
}

TEST_F(BrokenSetsOfSets, areDamagedWhereAFileIs) {
    std::string content = contentOf(file(1));
    content[4096 + 200] ^= 1;
    writeContent(file(1), content);
    EXPECT_FALSE(PathSet::open(manifest()).verifyFile(1, {}).empty());
    EXPECT_TRUE(PathSet::open(manifest()).verifyFile(0, {}).empty());
}

TEST_F(BrokenSetsOfSets, giveWhatIsThereIfThatIsAskedFor) {
    std::filesystem::remove(file(0));
    const PathSet set = PathSet::openPartial(manifest());
    ASSERT_EQ(set.missing().size(), 1U);
    EXPECT_EQ(set.missing()[0].firstNumber, 1U);
    EXPECT_EQ(set.missing()[0].lastNumber, 10U);
    EXPECT_EQ(set.missing()[0].reason.kind(), ErrorKind::kNotFound);

    EXPECT_EQ(set.size(), 30U);
    EXPECT_EQ(set.presentCount(), 20U);
    EXPECT_EQ(set.presentNumber(0), 11U);
    EXPECT_EQ(set.path(11), "part1/0");
    EXPECT_EQ(refusalOf([&] { set.path(10); }).kind, ErrorKind::kNotFound);
    const std::array<std::uint64_t, 2> numbers{30, 1};
    EXPECT_EQ(refusalOf([&] { set.paths(numbers, [](auto, auto) { FAIL(); }); }).kind,
              ErrorKind::kNotFound);
    EXPECT_TRUE(set.verify().empty());
    EXPECT_EQ(set.numberOf("part2/3"), 24U);
    EXPECT_EQ(set.numberOf("part0/3"), std::nullopt);
    EXPECT_EQ(statisticsOf(set, 1).segmentCount, 2U);
}

TEST_F(BrokenSetsOfSets, giveThePathsBelowWhatIsMissing) {
    std::filesystem::remove(file(1));
    const PathSet set = PathSet::openPartial(manifest());
    EXPECT_EQ(set.path(10), "part0/9");
    EXPECT_EQ(refusalOf([&] { set.path(11); }).kind, ErrorKind::kNotFound);
    EXPECT_EQ(set.path(21), "part2/0");
}

TEST_F(BrokenSetsOfSets, passOverWhatIsMissingWhereverItIs) {
    for (const std::vector<int>& missing :
         std::vector<std::vector<int>>{{}, {0}, {1}, {2}, {0, 1}, {1, 2}, {0, 2}, {0, 1, 2}}) {
        for (int i = 0; i < 3; ++i) write(i, 10);
        for (const int i : missing) std::filesystem::remove(file(i));
        const PathSet set = PathSet::openPartial(manifest());
        std::vector<Numbered> expected;
        for (int i = 0; i < 3; ++i)
            for (int k = 0; std::ranges::count(missing, i) == 0 && k < 10; ++k)
                expected.emplace_back(10 * i + k + 1,
                                      "part" + std::to_string(i) + "/" + std::to_string(k));
        EXPECT_EQ(visitedBy([&](auto visit) { set.forEach(visit); }), expected);
        EXPECT_EQ(visitedBy([&](auto visit) { set.find(Pattern::text("part"), visit); }), expected);
        std::vector<Numbered> stepped;
        for (auto path = set.begin(); path != set.end(); ++path)
            stepped.emplace_back(path.number(), *path);
        EXPECT_EQ(stepped, expected);
        std::ranges::reverse(expected);
        EXPECT_EQ(visitedBy([&](auto visit) { set.forEach(30, 1, visit); }), expected);
        EXPECT_EQ(visitedBy([&](auto visit) { set.walk(visit); }).size(), expected.size());
        EXPECT_EQ(visitedBy([&](auto visit) { set.under("part1", visit); }).size(),
                  std::ranges::count(missing, 1) == 0 ? 10U : 0U);
    }
}

TEST_F(BrokenSetsOfSets, rememberNoScansOfTheirOwn) {
    const PathSet set = PathSet::open(manifest());
    EXPECT_TRUE(scansOf(set).empty());
    EXPECT_TRUE(encodedScansOf(set).empty());
}

TEST_F(BrokenSetsOfSets, areOpenedWholeIfNothingIsMissing) {
    EXPECT_TRUE(PathSet::openPartial(manifest()).missing().empty());
    EXPECT_TRUE(PathSet::openPartial(file(0)).missing().empty());
    std::filesystem::remove(file(0));
    EXPECT_EQ(refusalOf([&] { PathSet::openPartial(file(0)); }).kind, ErrorKind::kNotFound);
}

TEST_F(BrokenSetsOfSets, refuseAManifestThatIsCutShort) {
    const std::string text = contentOf(manifest());
    for (const std::size_t size : {std::size_t{12}, text.size() / 2, text.size() - 3}) {
        writeContent(manifest(), text.substr(0, size));
        const Refusal refusal = refusalOf([&] { PathSet::open(manifest()); });
        EXPECT_EQ(refusal.kind, ErrorKind::kDamaged);
        EXPECT_TRUE(refusal.text.starts_with(manifest() + ": "));
    }
}

// --- Where the files are looked for.

class PlacesOfFiles : public BrokenSetsOfSets {
protected:
    PlacesOfFiles() : before_(std::filesystem::current_path()) {}
    ~PlacesOfFiles() override { std::filesystem::current_path(before_); }

private:
    std::filesystem::path before_;
};

TEST_F(PlacesOfFiles, areBesideTheManifestThatALinkLeadsTo) {
    const test_support::TemporaryTree other;
    std::filesystem::create_symlink(manifest(), other.pathOf("link.zqs"));
    EXPECT_EQ(PathSet::open(other.pathOf("link.zqs")).path(11), "part1/0");
    std::filesystem::remove(file(1));
    const Refusal refusal = refusalOf([&] { PathSet::open(other.pathOf("link.zqs")).path(11); });
    EXPECT_NE(refusal.text.find(file(1)), std::string::npos);
}

TEST_F(PlacesOfFiles, areWhereTheManifestSaysIfItSaysAllOfIt) {
    const test_support::TemporaryTree other;
    SetManifest manifestRead = decodeManifest(contentOf(manifest()));
    manifestRead.files[1].path = other.pathOf("moved.zqp");
    writeContent(manifest(), encodeManifest(manifestRead));
    std::filesystem::rename(file(1), other.pathOf("moved.zqp"));
    const PathSet set = PathSet::open(manifest());
    EXPECT_EQ(set.path(11), "part1/0");
    EXPECT_EQ(set.fileName(1), other.pathOf("moved.zqp"));
}

TEST_F(PlacesOfFiles, stayWhereTheyWereWhenTheProcessGoesElsewhere) {
    std::filesystem::current_path(std::filesystem::path(manifest()).parent_path());
    const PathSet set = PathSet::open("all.zqs");
    EXPECT_EQ(set.fileName(1), "part1.zqp");
    std::filesystem::current_path("/");
    EXPECT_EQ(set.path(11), "part1/0");
}

// --- Many files.

/// Lets the process have few files open while it lives.
class FewFiles {
public:
    explicit FewFiles(rlim_t most) {
        EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before_), 0);
        const rlimit few{most, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &few), 0);
    }
    FewFiles(const FewFiles&) = delete;
    FewFiles& operator=(const FewFiles&) = delete;
    ~FewFiles() { ::setrlimit(RLIMIT_NOFILE, &before_); }

private:
    rlimit before_{};
};

TEST(ManySetFiles, areReadByThreadsWithFewOpenAtATime) {
    constexpr int kFiles = 60;
    const test_support::TemporaryTree tree;
    SetManifestWriter writer(tree.pathOf("all.zqs"));
    for (int i = 0; i < kFiles; ++i) {
        const std::string file = tree.pathOf(std::to_string(i) + ".zqp");
        PathSetWriter set(file);
        set.add("path/" + std::to_string(i));
        set.commit();
        writer.addSet(file);
    }
    writer.commit();
    const FewFiles few(40);
    const PathSet set = PathSet::open(tree.pathOf("all.zqs"));
    std::vector<std::thread> readers;
    for (unsigned seed = 0; seed < 4; ++seed)
        readers.emplace_back([&set, seed] {
            std::mt19937 random(seed);
            for (int i = 0; i < 500; ++i) {
                const std::uint64_t number = 1 + random() % kFiles;
                ASSERT_EQ(set.path(number), "path/" + std::to_string(number - 1));
            }
        });
    for (std::thread& reader : readers) reader.join();
    EXPECT_EQ(set.count(Pattern::text("path")), std::uint64_t{kFiles});
}

}  // namespace
}  // namespace zqpaths
