// The hex examples of docs/zqp.md are what a set file holds.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/docs/HexExample.hpp"
#include "tests/docs/Page.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace zqpaths {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Mode = SetFileWriter::Mode;

const docs::Page& page() {
    static const docs::Page read("docs/zqp.md");
    return read;
}

/// The file that the page describes.
const std::string& example() {
    static const std::string content = [] {
        const test_support::TemporaryTree tree;
        const std::string path = tree.pathOf("s.zqp");
        SetFileWriter first(path, Mode::kCreate);
        first.append({SegmentForm::kImage, 3, 20, 0, bytesOf("one")});
        first.commit();
        SetFileWriter second(path, Mode::kAppend);
        second.append({SegmentForm::kPacked, 2, 9, 2, bytesOf("three")});
        second.commit();
        return contentOf(path);
    }();
    return content;
}

struct KnownPart {
    const char* name;
    std::size_t offset;
};

const KnownPart kKnownParts[] = {{"zqp-header", 0},
                                 {"zqp-superblock-1", kSuperblockOffsets[0]},
                                 {"zqp-superblock-2", kSuperblockOffsets[1]},
                                 {"zqp-directory", 8200}};

TEST(SetFilePage, showsWhatAFileHolds) {
    for (const KnownPart& part : kKnownParts) {
        const Bytes shown = docs::parseHex(page().blocksIn("hex").at(part.name));
        ASSERT_FALSE(shown.empty());
        const std::string actual = example().substr(part.offset, shown.size());
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
    EXPECT_EQ(example().size(), 8376U);
    EXPECT_EQ(example().substr(8376 - kSuperblockSize),
              example().substr(kSuperblockOffsets[0], kSuperblockSize));
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
