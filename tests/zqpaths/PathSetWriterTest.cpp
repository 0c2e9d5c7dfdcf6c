#include "zqpaths/PathSetWriter.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/FileSizeLimit.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SavedPaths.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"
#include "zqpaths/set/CollectedPaths.hpp"
#include "zqpaths/set/SegmentJoining.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths {
namespace {

using Form = PathSetWriter::Form;
using Mode = PathSetWriter::Mode;
using Paths = std::vector<std::string>;
using testing::HasSubstr;

class PathSetWriterTest : public testing::Test {
protected:
    void write(const Paths& paths, Mode mode, Form form = Form::kImage) const {
        PathSetWriter writer(file_, mode, form);
        for (const std::string& path : paths) writer.add(path);
        writer.commit();
    }

    std::string bytes() const {
        std::ifstream in(file_, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    std::vector<SegmentEntry> segments() const { return SetFile::open(file_)->segments(); }

    /// Nothing stands beside the file.
    void expectAlone(std::ptrdiff_t files = 1) const {
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(tree_.path()), {}), files);
    }

    test_support::TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
};

TEST_F(PathSetWriterTest, makesAFileOfPathsInTheirOrder) {
    write({"/usr/bin/env", "b", "a/c", "b"}, Mode::kCreate);
    EXPECT_EQ(savedPaths(file_), (Paths{"/usr/bin/env", "b", "a/c", "b"}));
    EXPECT_EQ(segments().size(), 1U);
    EXPECT_LT(bytes().size(), 8192U);
    expectAlone();
}

TEST_F(PathSetWriterTest, makesAnEmptySet) {
    write({}, Mode::kCreate);
    EXPECT_EQ(savedPaths(file_), Paths());
    EXPECT_EQ(segments().size(), 0U);
}

TEST_F(PathSetWriterTest, refusesAFileThatIsThere) {
    write({"a"}, Mode::kCreate);
    EXPECT_EQ(refusalOf([&] { write({"b"}, Mode::kCreate); }).kind, ErrorKind::kExists);
    EXPECT_EQ(savedPaths(file_), Paths{"a"});
}

TEST_F(PathSetWriterTest, replacesAFileThatIsThere) {
    write({"a"}, Mode::kReplace);
    write({"b", "c"}, Mode::kReplace);
    EXPECT_EQ(savedPaths(file_), (Paths{"b", "c"}));
    write({}, Mode::kReplace);
    EXPECT_EQ(savedPaths(file_), Paths());
    expectAlone();
}

TEST_F(PathSetWriterTest, appendsToWhatIsThere) {
    write({}, Mode::kCreate);
    write({"a"}, Mode::kAppend);
    write({"caf\xC3\xA9", "b"}, Mode::kAppend);
    EXPECT_EQ(savedPaths(file_), (Paths{"a", "caf\xC3\xA9", "b"}));
}

TEST_F(PathSetWriterTest, appendsToNoFileThatIsNotThere) {
    EXPECT_EQ(refusalOf([&] { write({"a"}, Mode::kAppend); }).kind, ErrorKind::kNotFound);
    expectAlone(0);
}

TEST_F(PathSetWriterTest, leavesTheFileUntouchedWhereNothingIsAppended) {
    write({"a", "b"}, Mode::kCreate);
    const std::string before = bytes();
    const auto time = std::filesystem::last_write_time(file_);
    write({}, Mode::kAppend);
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(std::filesystem::last_write_time(file_), time);
}

TEST_F(PathSetWriterTest, discardsWhatIsNotCommitted) {
    { PathSetWriter(file_).add("a"); }
    expectAlone(0);
    write({"a"}, Mode::kCreate);
    const std::string before = bytes();
    for (const Mode mode : {Mode::kReplace, Mode::kAppend}) {
        PathSetWriter(file_, mode).add("b");
        EXPECT_EQ(bytes(), before);
    }
    expectAlone();
}

TEST_F(PathSetWriterTest, marksPathsThatAreGoneAndKeepsTheirNumbers) {
    write({"a", "b", "c", "d"}, Mode::kCreate);
    {
        PathSetWriter writer(file_, Mode::kAppend);
        for (const std::uint64_t number : {2U, 3U, 5U}) {
            if (number == 5) writer.add("e");
            writer.markGone(number);
        }
        writer.commit();
    }
    const PathSet set = PathSet::open(file_);
    EXPECT_EQ(set.size(), 5U);
    EXPECT_EQ(set.goneCount(), 3U);
    EXPECT_EQ(set.goneCount(1, 2), 1U);
    EXPECT_EQ(set.goneCount(3, 5), 2U);
    EXPECT_EQ(set.path(2), "b");
    EXPECT_TRUE(set.isGone(5));
    EXPECT_FALSE(set.isGone(4));
    EXPECT_EQ(set.goneNumber(2), 5U);
    EXPECT_EQ(set.presentCount(), 2U);
    EXPECT_EQ(set.presentNumber(1), 4U);
    EXPECT_TRUE(set.verify().empty());
    EXPECT_THROW(set.isGone(6), Error);
    EXPECT_THROW(set.goneNumber(3), Error);
    EXPECT_THROW(set.presentNumber(2), Error);
}

TEST_F(PathSetWriterTest, keepsMarksWhilePathsAreAddedAndSegmentsJoined) {
    write({"a", "b"}, Mode::kCreate);
    {
        PathSetWriter writer(file_, Mode::kAppend);
        writer.markGone(1);
        writer.commit();
    }
    for (int i = 0; i < 20; ++i) write({"more" + std::to_string(i)}, Mode::kAppend);
    const PathSet set = PathSet::open(file_);
    EXPECT_EQ(set.goneCount(), 1U);
    EXPECT_TRUE(set.isGone(1));
}

TEST_F(PathSetWriterTest, takesMarksBackAndLeavesTheFileAloneIfNoneCounts) {
    write({"a", "b", "c"}, Mode::kCreate);
    const auto mark = [&](std::uint64_t number, bool isGone) {
        PathSetWriter writer(file_, Mode::kAppend);
        isGone ? writer.markGone(number) : writer.markPresent(number);
        writer.commit();
    };
    const std::string before = bytes();
    mark(2, false);
    EXPECT_EQ(bytes(), before);
    mark(2, true);
    mark(3, true);  // the last run grows
    EXPECT_EQ(PathSet::open(file_).goneCount(), 2U);
    const std::string marked = bytes();
    mark(3, true);
    EXPECT_EQ(bytes(), marked);
    mark(2, false);
    mark(3, false);
    EXPECT_EQ(PathSet::open(file_).goneCount(), 0U);
    EXPECT_FALSE(SetFile::open(file_)->state().directory.gone);
}

TEST_F(PathSetWriterTest, refusesToMarkWhatThereIsNot) {
    PathSetWriter writer(file_);
    writer.add("a");
    for (const std::uint64_t number : {0U, 2U}) {
        const Refusal error = refusalOf([&] { writer.markGone(number); });
        EXPECT_EQ(error.kind, ErrorKind::kWrongUse);
        EXPECT_THAT(error.text, HasSubstr("there is no path number"));
    }
    writer.markGone(1);
    writer.commit();
    EXPECT_THROW(writer.markPresent(1), Error);
    EXPECT_EQ(PathSet::open(file_).presentCount(), 0U);
}

TEST_F(PathSetWriterTest, recordsScansInThePlaceOfThoseOfTheSameRoot) {
    const auto record = [&](const std::string& root, const std::string& name, std::int64_t began) {
        PathSetWriter writer(file_, std::filesystem::exists(file_) ? Mode::kAppend : Mode::kCreate);
        ScanWriter scan({root, began, {}});
        scan.add({.subdirectoryCount = 1});
        scan.add({.name = name});
        recordScans(writer, {std::move(scan).finish()});
        writer.commit();
    };
    record("/a", "x", 1);
    record("/b", "y", 1);
    const std::string before = bytes();
    record("/a", "x", 2);
    EXPECT_EQ(bytes(), before);  // it says the same
    record("/a", "z", 3);
    const PathSet set = PathSet::open(file_);
    const std::vector<EncodedScan> encoded = encodedScansOf(set);
    EXPECT_EQ(decodeScans(joinScans(encoded)).size(), encoded.size());
    const std::vector<Scan> scans = scansOf(set);
    EXPECT_EQ(scans.size(), encoded.size());
    ASSERT_EQ(scans.size(), 2U);
    EXPECT_EQ(scans[0].directories[1].name, "z");
    EXPECT_EQ(scans[0].began, 3);
    EXPECT_EQ(scans[1].directories[1].name, "y");
}

TEST_F(PathSetWriterTest, countsThePathsThatWereThere) {
    write({"a", "b"}, Mode::kCreate);
    PathSetWriter writer(file_, Mode::kAppend);
    EXPECT_EQ(writer.size(), 2U);
    writer.add("c");
    EXPECT_EQ(writer.size(), 3U);
    writer.commit();
    EXPECT_EQ(writer.size(), 3U);
}

TEST_F(PathSetWriterTest, refusesAnEmptyPathAndOneWithNulAndGoesOn) {
    PathSetWriter writer(file_);
    writer.add("a");
    const Refusal empty = refusalOf([&] { writer.add(""); });
    EXPECT_EQ(empty.kind, ErrorKind::kWrongUse);
    EXPECT_EQ(empty.text, file_ + ": an empty path");
    const Refusal nul = refusalOf([&] { writer.add(std::string_view("ab\0c", 4)); });
    EXPECT_EQ(nul.kind, ErrorKind::kWrongUse);
    EXPECT_EQ(nul.text, file_ + ": a path with NUL at byte 2");
    writer.add("b");
    writer.commit();
    EXPECT_EQ(savedPaths(file_), (Paths{"a", "b"}));
}

TEST_F(PathSetWriterTest, takesNothingAfterACommit) {
    PathSetWriter writer(file_);
    writer.add("a");
    writer.commit();
    EXPECT_EQ(refusalOf([&] { writer.add("b"); }).kind, ErrorKind::kWrongUse);
    EXPECT_EQ(refusalOf([&] { writer.commit(); }).kind, ErrorKind::kWrongUse);
    EXPECT_EQ(savedPaths(file_), Paths{"a"});
}

TEST_F(PathSetWriterTest, canBeMoved) {
    std::optional<PathSetWriter> first(file_);
    first->add("a");
    PathSetWriter second(std::move(*first));
    first.reset();
    second.add("b");
    PathSetWriter third(tree_.pathOf("other.zqp"));
    third = std::move(second);
    third.commit();
    EXPECT_EQ(savedPaths(file_), (Paths{"a", "b"}));
    expectAlone();
}

TEST_F(PathSetWriterTest, keepsAnyBytesInBothForms) {
    const Paths paths = randomPaths(20'000, 3);
    for (const Form form : {Form::kImage, Form::kPacked}) {
        write(paths, Mode::kReplace, form);
        EXPECT_EQ(savedPaths(file_), paths);
        EXPECT_EQ(segments().front().form,
                  form == Form::kPacked ? SegmentForm::kPacked : SegmentForm::kImage);
    }
}

TEST_F(PathSetWriterTest, tellsHowFarItIs) {
    std::atomic<std::uint64_t> coded{0};
    std::atomic<int> syncCount{0};
    PathSetWriter writer(file_);
    writer.watch([&](WorkStep step, std::uint64_t items) {
        if (step == WorkStep::kCoding) coded += items;
        if (step == WorkStep::kSyncing) ++syncCount;
    });
    constexpr std::uint64_t kCount = CollectedPaths::kMaxPaths + 1;
    for (std::uint64_t i = 0; i < kCount; ++i) writer.add("a/b" + std::to_string(i % 1000));
    EXPECT_EQ(syncCount, 0);
    writer.commit();
    EXPECT_EQ(coded, kCount);
    EXPECT_EQ(syncCount, 1);
}

TEST_F(PathSetWriterTest, makesSeveralSegmentsOfMuchText) {
    Paths paths;
    for (std::size_t i = 0; i < 5 * 64 / 2; ++i)
        paths.push_back(std::to_string(i / 10) + "/" + std::string(std::size_t{1} << 20, 'x'));
    write(paths, Mode::kCreate);
    EXPECT_EQ(segments().size(), 3U);
    EXPECT_TRUE(savedPaths(file_) == paths);
}

TEST_F(PathSetWriterTest, givesAVeryLongPathASegmentOfItsOwn) {
    const std::string longPath = std::string(std::size_t{70} << 20, 'x') + "/y";
    write({"a", longPath, "b"}, Mode::kCreate);
    EXPECT_EQ(segments().size(), 3U);
    EXPECT_TRUE(savedPaths(file_) == (Paths{"a", longPath, "b"}));
}

TEST_F(PathSetWriterTest, joinsSmallSegmentsThatGather) {
    Paths paths;
    write({}, Mode::kCreate);
    for (int i = 0; i < 300; ++i) {
        paths.push_back("folder" + std::to_string(i / 10) + "/\xC3\xA9" + std::to_string(i));
        write({paths.back()}, Mode::kAppend);
        ASSERT_LE(segments().size(), kMostSmall);
    }
    EXPECT_EQ(savedPaths(file_), paths);
    expectAlone();
}

TEST_F(PathSetWriterTest, joinsIntoTheFormThatIsAskedFor) {
    Paths paths;
    write({}, Mode::kCreate);
    for (int i = 0; i < 9; ++i) {
        paths.push_back(std::to_string(i));
        write({paths.back()}, Mode::kAppend, i < 8 ? Form::kPacked : Form::kImage);
    }
    ASSERT_EQ(segments().size(), 1U);
    EXPECT_EQ(segments().front().form, SegmentForm::kImage);
    EXPECT_EQ(savedPaths(file_), paths);
}

TEST_F(PathSetWriterTest, joinsSegmentsThatAreTooLargeForOne) {
    Paths paths;
    write({}, Mode::kCreate);
    for (std::size_t i = 0; i < 9; ++i) {
        const Paths added(8, std::to_string(i) + std::string((std::size_t{1} << 20) - 1, 'x'));
        write(added, Mode::kAppend);
        paths.insert(paths.end(), added.begin(), added.end());
    }
    ASSERT_EQ(segments().size(), 2U);
    EXPECT_EQ(segments().front().pathCount, 64U);
    EXPECT_TRUE(savedPaths(file_) == paths);
}

TEST_F(PathSetWriterTest, doesNotJoinWhatIsDamaged) {
    write({}, Mode::kCreate);
    for (int i = 0; i < 8; ++i) write({"path" + std::to_string(i)}, Mode::kAppend);
    {
        const SegmentEntry damaged = segments()[3];
        std::fstream out(file_, std::ios::in | std::ios::out | std::ios::binary);
        out.seekp(static_cast<std::streamoff>(damaged.offset));
        out.write("damage", 6);
    }
    const std::string before = bytes();
    PathSetWriter writer(file_, Mode::kAppend);
    writer.add("more");
    const Refusal error = refusalOf([&] { writer.commit(); });
    EXPECT_EQ(error.kind, ErrorKind::kDamaged);
    EXPECT_THAT(error.text, HasSubstr(file_ + ": segment 4"));
    EXPECT_EQ(refusalOf([&] { writer.add("a"); }).kind, ErrorKind::kDamaged);
    EXPECT_EQ(bytes().substr(0, before.size()), before);
}

TEST_F(PathSetWriterTest, saysLaterWhatWentWrongOnOtherThreads) {
    write({"a"}, Mode::kCreate);
    const std::string before = bytes();
    {
        const test_support::FileSizeLimit limit(before.size() + 1000);
        PathSetWriter writer(file_, Mode::kAppend);
        const auto addTooMuch = [&] {
            for (std::size_t i = 0; i < 3 * CollectedPaths::kMaxPaths; ++i)
                writer.add("f" + std::to_string(i));
        };
        EXPECT_EQ(refusalOf(addTooMuch).kind, ErrorKind::kSystem);
        EXPECT_EQ(refusalOf([&] { writer.add("x"); }).kind, ErrorKind::kSystem);
        EXPECT_EQ(refusalOf([&] { writer.commit(); }).kind, ErrorKind::kSystem);
    }
    EXPECT_EQ(savedPaths(file_), Paths{"a"});
    write({"b"}, Mode::kAppend);
    EXPECT_EQ(savedPaths(file_), (Paths{"a", "b"}));
}

TEST_F(PathSetWriterTest, throwsWhatWentWrongWhileItCommits) {
    write({"a"}, Mode::kCreate);
    {
        const test_support::FileSizeLimit limit(bytes().size());
        PathSetWriter writer(file_, Mode::kAppend);
        writer.add("b");
        EXPECT_EQ(refusalOf([&] { writer.commit(); }).kind, ErrorKind::kSystem);
        EXPECT_EQ(refusalOf([&] { writer.commit(); }).kind, ErrorKind::kSystem);
    }
    EXPECT_EQ(savedPaths(file_), Paths{"a"});
}

}  // namespace
}  // namespace zqpaths
