// Sets that a writer adds as they are: segments are copied, numbers run through.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/FileSizeLimit.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SavedPaths.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths {
namespace {

using Form = PathSetWriter::Form;
using Mode = PathSetWriter::Mode;
using Numbers = std::vector<std::uint64_t>;
using Paths = std::vector<std::string>;
using test_support::FileSizeLimit;
using testing::HasSubstr;

class AddedSets : public testing::Test {
protected:
    /// A set of these paths, some of them gone.
    std::string made(const std::string& name, const Paths& paths, const Numbers& gone = {},
                     Form form = Form::kImage) const {
        PathSetWriter writer(tree_.pathOf(name), Mode::kReplace, form);
        for (const std::string& path : paths) writer.add(path);
        for (const std::uint64_t number : gone) writer.markGone(number);
        writer.commit();
        return tree_.pathOf(name);
    }

    Numbers goneNow() const {
        const PathSet set = PathSet::open(out_);
        Numbers numbers;
        for (std::uint64_t place = 0; place < set.goneCount(); ++place)
            numbers.push_back(set.goneNumber(place));
        return numbers;
    }

    std::vector<SegmentEntry> segments(const std::string& file) const {
        return SetFile::open(file)->segments();
    }

    test_support::TemporaryTree tree_;
    std::string out_ = tree_.pathOf("out.zqp");
};

TEST_F(AddedSets, followEachOtherWithTheirBytesAsTheyAre) {
    const Paths odd = randomPaths(500, 1);
    const std::string first = made("a.zqp", odd);
    const std::string second = made("b.zqp", {"x", "y/z"}, {}, Form::kPacked);
    PathSetWriter writer(out_);
    writer.addSet(PathSet::open(first));
    writer.addSet(PathSet::open(second));
    writer.addSet(PathSet::open(first));
    EXPECT_EQ(writer.size(), 1002U);
    writer.commit();
    Paths all = odd;
    all.insert(all.end(), {"x", "y/z"});
    all.insert(all.end(), odd.begin(), odd.end());
    EXPECT_EQ(savedPaths(out_), all);
    ASSERT_EQ(segments(out_).size(), 3U);
    EXPECT_EQ(segments(out_)[0].sum, segments(first)[0].sum);
    EXPECT_EQ(segments(out_)[1].form, SegmentForm::kPacked);
    EXPECT_EQ(segments(out_)[1].sum, segments(second)[0].sum);
    EXPECT_TRUE(PathSet::open(out_).verify().empty());
}

TEST_F(AddedSets, followPathsThatWereAddedBeforeAndGoBeforeThoseAfter) {
    const std::string set = made("a.zqp", {"m", "n"});
    PathSetWriter writer(out_);
    writer.add("before");
    writer.addSet(PathSet::open(set));
    writer.add("between");
    writer.addSet(PathSet::open(set));
    writer.add("after");
    writer.commit();
    EXPECT_EQ(savedPaths(out_), (Paths{"before", "m", "n", "between", "m", "n", "after"}));
}

TEST_F(AddedSets, followThePathsOfASetThatIsThereAlsoIfItIsTheSame) {
    made("out.zqp", {"a", "b"}, {1});
    const PathSet itself = PathSet::open(out_);
    PathSetWriter writer(out_, Mode::kAppend);
    writer.addSet(itself);
    writer.commit();
    EXPECT_EQ(savedPaths(out_), (Paths{"a", "b", "a", "b"}));
    EXPECT_EQ(goneNow(), (Numbers{1, 3}));
}

TEST_F(AddedSets, addNothingWithoutPaths) {
    made("out.zqp", {"a"});
    const std::string before = contentOf(out_);
    const std::string empty = made("empty.zqp", {});
    PathSetWriter writer(out_, Mode::kAppend);
    writer.addSet(PathSet::open(empty));
    writer.commit();
    EXPECT_EQ(contentOf(out_), before);
}

TEST_F(AddedSets, haveTheirGonePathsMarkedUnderTheirNewNumbers) {
    const std::string set = made("a.zqp", {"p", "q", "r", "s"}, {1, 2, 4});
    made("out.zqp", {"a", "b"}, {2});
    PathSetWriter writer(out_, Mode::kAppend);
    writer.addSet(PathSet::open(set));  // 3 to 6
    writer.addSet(PathSet::open(set));  // 7 to 10
    writer.markPresent(4);
    writer.markGone(9);
    writer.add("c");
    writer.markGone(1);
    writer.commit();
    EXPECT_EQ(goneNow(), (Numbers{1, 2, 3, 6, 7, 8, 9, 10}));
    EXPECT_TRUE(PathSet::open(out_).verify().empty());
}

TEST_F(AddedSets, areNotTakenWithoutPathsThatAreDamaged) {
    const std::string set = made("a.zqp", {"p", "q"});
    {
        PathSetWriter writer(set, Mode::kAppend);
        writer.add("r");
        writer.commit();
    }
    std::string bytes = contentOf(set);
    bytes[segments(set)[1].offset + 100] ^= 1;
    writeContent(set, bytes);
    PathSetWriter writer(out_);
    const PathSet damaged = PathSet::open(set);
    const Refusal error = refusalOf([&] { writer.addSet(damaged); });
    EXPECT_EQ(error.kind, ErrorKind::kDamaged);
    EXPECT_THAT(error.text, HasSubstr(set + ": segment 2 at byte"));
    EXPECT_EQ(refusalOf([&] { writer.add("x"); }).kind, ErrorKind::kDamaged);
    EXPECT_EQ(refusalOf([&] { writer.commit(); }).kind, ErrorKind::kDamaged);
    EXPECT_FALSE(std::filesystem::exists(out_));
}

TEST_F(AddedSets, areNotTakenWithGoneMarksThatAreDamaged) {
    const std::string set = made("a.zqp", {"p", "q", "r"}, {2});
    std::string bytes = contentOf(set);
    bytes[SetFile::open(set)->state().directory.gone->offset] ^= 1;
    writeContent(set, bytes);
    PathSetWriter writer(out_);
    const PathSet damaged = PathSet::open(set);
    const Refusal error = refusalOf([&] { writer.addSet(damaged); });
    EXPECT_EQ(error.kind, ErrorKind::kDamaged);
    EXPECT_THAT(error.text, HasSubstr(set + ": the gone paths"));
}

TEST_F(AddedSets, areNotTakenOfAFileThatWasCutMeanwhile) {
    const std::string set = made("a.zqp", {"p", "q"});
    const PathSet opened = PathSet::open(set);
    std::filesystem::resize_file(set, 5000);
    PathSetWriter writer(out_);
    const Refusal error = refusalOf([&] { writer.addSet(opened); });
    EXPECT_EQ(error.kind, ErrorKind::kDamaged);
    EXPECT_THAT(error.text, HasSubstr(set + ": has 5000 bytes"));
}

TEST_F(AddedSets, areNotTakenAfterACommit) {
    const std::string set = made("a.zqp", {"p"});
    PathSetWriter writer(out_);
    writer.commit();
    EXPECT_EQ(refusalOf([&] { writer.addSet(PathSet::open(set)); }).kind, ErrorKind::kWrongUse);
}

TEST_F(AddedSets, leaveTheFileAsItWasWhereTheyHaveNoRoom) {
    const std::string set = made("a.zqp", randomPaths(5000, 2));
    made("out.zqp", {"a"});
    const std::string before = contentOf(out_);
    {
        const FileSizeLimit limit(before.size() + 8192);
        PathSetWriter writer(out_, Mode::kAppend);
        const PathSet added = PathSet::open(set);
        EXPECT_EQ(refusalOf([&] { writer.addSet(added); }).kind, ErrorKind::kSystem);
        EXPECT_EQ(refusalOf([&] { writer.commit(); }).kind, ErrorKind::kSystem);
    }
    EXPECT_EQ(contentOf(out_), before);
}

TEST_F(AddedSets, areTakenInPiecesWithTheirMarks) {
    const std::string set = made("a.zqp", {"p", "q", "r"}, {1, 3});
    {
        PathSetWriter writer(set, Mode::kAppend);
        for (const char* const path : {"s", "t"}) writer.add(path);
        writer.markGone(5);
        writer.commit();
    }
    const PathSet added = PathSet::open(set);
    PathSetWriter writer(out_);
    writer.addSegments(added, 1, 1);
    writer.addSegments(added, 0, 0);
    writer.addSegments(added, 0, 1);
    EXPECT_EQ(refusalOf([&] { writer.addSegments(added, 1, 2); }).kind, ErrorKind::kWrongUse);
    writer.commit();
    EXPECT_EQ(savedPaths(out_), (Paths{"s", "t", "p", "q", "r"}));
    EXPECT_EQ(goneNow(), (Numbers{2, 3, 5}));
}

TEST_F(AddedSets, areTakenFromSetsOfSetsButNotWithoutAFileOfTheirs) {
    made("a.zqp", {"p", "q"}, {2});
    const std::string second = made("b.zqp", {"r"}, {1});
    const std::string all = tree_.pathOf("all.zqs");
    {
        SetManifestWriter manifest(all);
        manifest.addSet(second);
        manifest.addSet(tree_.pathOf("a.zqp"));
        manifest.addSet(second);
        manifest.commit();
    }
    {
        PathSetWriter writer(out_);
        writer.add("before");
        writer.addSet(PathSet::open(all));
        writer.commit();
    }
    EXPECT_EQ(savedPaths(out_), (Paths{"before", "r", "p", "q", "r"}));
    EXPECT_EQ(goneNow(), (Numbers{2, 4, 5}));
    std::filesystem::remove(second);
    PathSetWriter writer(tree_.pathOf("other.zqp"));
    const PathSet partial = PathSet::openPartial(all);
    const Refusal error = refusalOf([&] { writer.addSet(partial); });
    EXPECT_EQ(error.kind, ErrorKind::kNotFound);
    EXPECT_THAT(error.text, HasSubstr(second));
    writer.add("x");
    writer.commit();
    EXPECT_EQ(savedPaths(tree_.pathOf("other.zqp")), Paths{"x"});
}

TEST_F(AddedSets, areToldByTheirBytes) {
    const std::string set = made("a.zqp", {"p", "q"});
    std::atomic<std::uint64_t> summed{0};
    PathSetWriter writer(out_);
    writer.watch([&](WorkStep step, std::uint64_t items) {
        if (step == WorkStep::kSumming) summed += items;
    });
    writer.addSet(PathSet::open(set));
    EXPECT_EQ(summed, segments(set)[0].size);
}

TEST_F(AddedSets, areJoinedByALaterWriterAsAnySmallSegments) {
    const std::string set = made("a.zqp", {"p"});
    const PathSet added = PathSet::open(set);
    PathSetWriter first(out_);
    for (int i = 0; i < 10; ++i) first.addSet(added);
    first.add("q");
    first.commit();
    EXPECT_EQ(segments(out_).size(), 11U);
    PathSetWriter second(out_, Mode::kAppend);
    second.add("r");
    second.commit();
    EXPECT_EQ(segments(out_).size(), 1U);
    Paths all(10, "p");
    all.insert(all.end(), {"q", "r"});
    EXPECT_EQ(savedPaths(out_), all);
}

TEST_F(AddedSets, leaveWhatTheirSetsRememberOfDirectories) {
    {
        PathSetWriter writer(tree_.pathOf("a.zqp"));
        writer.add("/d/x");
        ScanWriter scan({"/d", 1, {}});
        scan.add({});
        recordScans(writer, {std::move(scan).finish()});
        writer.commit();
    }
    PathSetWriter writer(out_);
    writer.addSet(PathSet::open(tree_.pathOf("a.zqp")));
    writer.commit();
    EXPECT_TRUE(scansOf(PathSet::open(out_)).empty());
}

}  // namespace
}  // namespace zqpaths
