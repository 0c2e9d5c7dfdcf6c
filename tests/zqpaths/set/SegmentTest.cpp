#include "zqpaths/set/Segment.hpp"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <thread>

#include "tests/support/SavedBodies.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/zqpaths/SegmentedSets.hpp"

namespace zqpaths {
namespace {

class SegmentTest : public testing::TestWithParam<SegmentForm> {
protected:
    SegmentedSet made_{{{SegmentForm::kImage, {"first"}}, {GetParam(), {"a/b", "plain", "a/c"}}}};
    std::shared_ptr<const SetFile> file_ = SetFile::open(made_.file());
    Segment segment_{file_, file_->segments()[1], 2};
};
INSTANTIATE_TEST_SUITE_P(Forms, SegmentTest,
                         testing::Values(SegmentForm::kImage, SegmentForm::kPacked));

TEST_P(SegmentTest, countsItsPathsFromItsFirstNumber) {
    EXPECT_EQ(segment_.firstNumber(), 2U);
    EXPECT_EQ(segment_.lastNumber(), 4U);
    EXPECT_EQ(segment_.positionOf(4), 3U);
    EXPECT_EQ(segment_.numberOf(3), 4U);
    std::string text = "x ";
    segment_.appendPath(2, text);
    EXPECT_EQ(text, "x plain");
}

TEST_P(SegmentTest, givesItsPathsAsBytes) {
    std::vector<std::string> paths;
    segment_.forEachPath({1, 3}, [&](std::size_t position, std::string_view path) {
        EXPECT_EQ(position, paths.size() + 1);
        paths.emplace_back(path);
    });
    EXPECT_EQ(paths, (std::vector<std::string>{"a/b", "plain", "a/c"}));
}

TEST_P(SegmentTest, isOpenedOnceForAll) {
    std::vector<const void*> sets(8);
    std::vector<std::thread> threads;
    for (const void*& set : sets) threads.emplace_back([&] { set = &segment_.set(); });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(sets, std::vector<const void*>(8, &segment_.set()));
    EXPECT_NE(segment_.openAnew().get(), &segment_.set());
    EXPECT_EQ(segment_.openAnew()->size(), 3U);
}

TEST_P(SegmentTest, saysThatItIsDamagedForWhatTheCoreRefuses) {
    const Refusal refusal = refusalOf(
        [&] { segment_.read([](const auto& /*set*/) { throw std::runtime_error("broken"); }); });
    EXPECT_EQ(refusal.kind, ErrorKind::kDamaged);
    EXPECT_EQ(refusal.text, made_.file() + ": segment 2: broken");
    EXPECT_THROW(segment_.translated([] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_EQ(refusalOf([&] {
                  segment_.translated([] { throw Error(ErrorKind::kHeld, "x", "y"); });
              }).kind,
              ErrorKind::kHeld);
    const auto visit = [](std::size_t, auto) {};
    EXPECT_EQ(segment_.forEachPath({1, 3}, visit), 4U);
    EXPECT_EQ(refusalOf([&] { segment_.forEachPath({1, 4}, visit); }).kind, ErrorKind::kDamaged);
}

TEST_P(SegmentTest, isVerified) {
    EXPECT_NO_THROW(segment_.verify());
    SegmentEntry entry = file_->segments()[1];
    entry.textSize += 1;
    EXPECT_EQ(refusalOf([&] { Segment(file_, entry, 2).verify(); }).kind, ErrorKind::kDamaged);
    entry.textSize = std::uint64_t{1} << 61;  // of a body that would be larger than any can be
    const Segment endless(file_, entry, 2);
    std::string text;
    endless.appendPath(3, text);
    EXPECT_EQ(text, "a/c");
    EXPECT_EQ(refusalOf([&] { endless.verify(); }).kind, ErrorKind::kDamaged);
}

// As nobody can add one, but a saved form can have it.
TEST(DamagedSegment, hasAPathWithoutAByte) {
    compressedpaths::SavedBody body;
    body.shape({false, true, true}).trie({2, 0}, {compressedpaths::x(), {0, 0}});
    const std::vector<std::uint8_t> form = body.folders({2}, {{}}).form(true);
    std::vector<std::uint8_t> bytes{'x', 0, 'y', 0};
    bytes.insert(bytes.end(), form.begin(), form.end());
    const test_support::TemporaryTree tree;
    SetFileWriter writer(tree.pathOf("s.zqp"), SetFileWriter::Mode::kCreate);
    writer.append({SegmentForm::kPacked, 2, 4, 4, std::as_bytes(std::span(bytes))});
    writer.commit();
    const auto file = SetFile::open(tree.pathOf("s.zqp"));
    const Segment segment(file, file->segments()[0], 1);
    std::string text;
    segment.appendPath(1, text);
    EXPECT_EQ(text, "x");
    EXPECT_EQ(refusalOf([&] { segment.verify(); }).text,
              file->path() + ": segment 1: path number 2 of it is none");
}

}  // namespace
}  // namespace zqpaths
