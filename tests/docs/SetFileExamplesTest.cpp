// The hex examples of docs/zqp.md are what a set file holds.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/HexExample.hpp"
#include "tests/docs/Page.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/directory/ScanRecord.hpp"
#include "zqpaths/set/GonePaths.hpp"

namespace zqpaths {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Mode = SetFileWriter::Mode;

const docs::Page& page() {
    static const docs::Page read("docs/zqp.md");
    return read;
}

/// The scan that the page describes.
EncodedScan exampleScan() {
    constexpr std::int64_t kASecond = 1'000'000'000;
    ScanWriter scan({"/d", 100 * kASecond, {{"hidden", ""}}});
    scan.add({.subdirectoryCount = 2, .stamp = {2, 300, 50 * kASecond, 50 * kASecond}});
    scan.add({.name = "a", .stamp = {2, 298, 50 * kASecond - 2, 50 * kASecond}});
    scan.add({.name = "b", .state = ScanState::kLeftOut, .stamp = {7, 1, 99, 99}});
    return std::move(scan).finish();
}

/// The file that the page describes, before and after three of its five paths were marked as gone
/// and a scan was recorded.
struct Example {
    std::string before;
    std::string after;
};

const Example& example() {
    static const Example files = [] {
        Example made;
        const test_support::TemporaryTree tree;
        const std::string path = tree.pathOf("s.zqp");
        SetFileWriter first(path, Mode::kCreate);
        first.append({SegmentForm::kImage, 3, 20, 0, bytesOf("one")});
        first.commit();
        SetFileWriter second(path, Mode::kAppend);
        second.append({SegmentForm::kPacked, 2, 9, 2, bytesOf("three")});
        second.commit();
        made.before = contentOf(path);
        SetFileWriter third(path, Mode::kAppend);
        GoneMarks marks;
        for (const std::uint64_t number : {2U, 3U, 5U}) marks.markGone(number);
        const GoneMarks::Runs runs = marks.appliedTo(GonePaths(5));
        third.putGone({runs.goneCount, runs.bytes});
        const std::vector<EncodedScan> scans{exampleScan()};
        third.putScans({scans.front().directoryCount, joinScans(scans)});
        third.commit();
        made.after = contentOf(path);
        return made;
    }();
    return files;
}

struct KnownPart {
    const char* name;
    std::string Example::*file;
    std::size_t offset;
};

const KnownPart kKnownParts[] = {{"zqp-header", &Example::before, 0},
                                 {"zqp-superblock-1", &Example::before, kSuperblockOffsets[0]},
                                 {"zqp-superblock-2", &Example::before, kSuperblockOffsets[1]},
                                 {"zqp-directory", &Example::before, 8200},
                                 {"zqp-gone", &Example::after, 8376},
                                 {"zqp-scans", &Example::after, 8408},
                                 {"zqp-blocks", &Example::after, 8592}};

TEST(SetFilePage, showsWhatAFileHolds) {
    for (const KnownPart& part : kKnownParts) {
        const Bytes shown = docs::parseHex(page().blocksIn("hex").at(part.name));
        ASSERT_FALSE(shown.empty());
        const std::string actual = (example().*part.file).substr(part.offset, shown.size());
        EXPECT_EQ(shown, Bytes(actual.begin(), actual.end())) << part.name;
    }
}

TEST(SetFilePage, hasNoExampleThatNobodyChecks) {
    std::vector<std::string> known;
    for (const KnownPart& part : kKnownParts) known.emplace_back(part.name);
    for (const auto& [name, text] : page().blocksIn("hex"))
        EXPECT_THAT(known, ::testing::Contains(name));
}

TEST(SetFilePage, tellsWhatStandsAtTheEnd) {
    EXPECT_EQ(example().before.size(), 8376U);
    EXPECT_EQ(example().before.substr(8376 - kSuperblockSize),
              example().before.substr(kSuperblockOffsets[0], kSuperblockSize));
}

TEST(SetFilePage, tellsWhereTheBlocksAre) {
    const auto directory = decodeSections(bytesOf(example().after.substr(8464, 224)));
    EXPECT_EQ(directory.gone->offset, 8376U);
    EXPECT_EQ(directory.scans->offset, 8408U);
    EXPECT_EQ(directory.scans->size, docs::parseHex(page().blocksIn("hex").at("zqp-scans")).size());
    EXPECT_EQ(docs::parseHex(page().blocksIn("hex").at("zqp-gone")).size(), 32U);
    EXPECT_EQ(docs::parseHex(page().blocksIn("hex").at("zqp-blocks")).size(), 96U);
}

TEST(SetFilePage, tellsTheSizesOfTheParts) {
    const Bytes directory = docs::parseHex(page().blocksIn("hex").at("zqp-directory"));
    EXPECT_EQ(directory.size(), 128U);
    EXPECT_EQ(docs::parseHex(page().blocksIn("hex").at("zqp-superblock-1")).size(),
              kSuperblockSize);
    EXPECT_EQ(docs::parseHex(page().blocksIn("hex").at("zqp-header")).size(), kHeaderSize);
}

}  // namespace
}  // namespace zqpaths
