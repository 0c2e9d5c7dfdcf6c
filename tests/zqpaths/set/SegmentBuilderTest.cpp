#include "zqpaths/set/SegmentBuilder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"
#include "zqpaths/set/TreeStringBytes.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

using compressedpaths::HuffmanPathTree;
using Paths = std::vector<std::string>;

CollectedPaths collected(const Paths& paths) {
    CollectedPaths all;
    for (const std::string& path : paths) all.append(path);
    return all;
}

Paths pathsOf(const HuffmanPathTree& set) {
    Paths paths;
    set.forEachText(1, set.size(), "/", [&](std::size_t, std::string_view text) {
        paths.emplace_back(pathOfComponents(text));
    });
    return paths;
}

std::unique_ptr<HuffmanPathTree> openImage(const BuiltSegment& segment) {
    HuffmanPathTree::verifyImage(segment.view().bytes);
    return HuffmanPathTree::openImage(segment.view().bytes);
}

std::unique_ptr<HuffmanPathTree> inflate(const BuiltSegment& segment) {
    const std::span<const std::uint8_t> bytes = segment.bytes.values();
    const auto characters = bytes.first(segment.treeStringSize);
    const auto form = bytes.subspan(segment.treeStringSize);
    std::vector<std::uint8_t> saved(form.begin(), form.end());
    auto set = std::make_unique<HuffmanPathTree>();
    set->deserialize(saved, true);
    set->inflateHuffman(treeStringOf(characters));
    return set;
}

/// That a segment of these paths gives them back, in both forms.
void expectKept(const Paths& paths, unsigned threads = 2) {
    const CollectedPaths all = collected(paths);
    for (const SegmentForm form : {SegmentForm::kImage, SegmentForm::kPacked}) {
        const BuiltSegment segment = buildSegment(all, form, threads);
        EXPECT_EQ(segment.form, form);
        EXPECT_EQ(segment.pathCount, paths.size());
        EXPECT_EQ(segment.textSize, all.textSize());
        EXPECT_EQ(segment.treeStringSize > 0, form == SegmentForm::kPacked);
        const auto set = form == SegmentForm::kImage ? openImage(segment) : inflate(segment);
        ASSERT_EQ(set->size(), paths.size());
        EXPECT_EQ(pathsOf(*set), paths);
    }
}

/// Paths of many folders of all sizes, in an order in which folders come again.
Paths manyPaths(std::size_t count) {
    Paths paths;
    for (std::size_t i = 0; paths.size() < count; ++i)
        for (std::size_t file = 0; file <= i % 17; ++file)
            paths.push_back("usr/share/" + std::to_string(i * i % 1009) + "/" +
                            std::to_string(i % 7) + "/file" + std::to_string(file));
    paths.resize(count);
    return paths;
}

TEST(SegmentBuilder, keepsOnePath) {
    expectKept({"/usr/bin/env"});
    expectKept({"x"});
    expectKept({"/"});
}

TEST(SegmentBuilder, keepsPathsOfOneCharacter) {
    expectKept({"a", "a", "a"});
    Paths all;
    for (int byte = 1; byte < 256; ++byte) all.emplace_back(1, static_cast<char>(byte));
    expectKept(all);
}

TEST(SegmentBuilder, keepsSeparatorsInEveryPlace) {
    expectKept(separatorPaths(8));
}

TEST(SegmentBuilder, keepsPathsThatAreFoldersToo) {
    expectKept({"a", "a/b", "a/b/c", "a/b", "a/", "a/b/", "a/b//c"});
    expectKept({"a/b/c", "a/b", "a", "a/b/c/d"});
    expectKept({"/", "/a", "/a/b", "/a/b/c", "//"});
}

TEST(SegmentBuilder, keepsTheSamePathAsOftenAsItCame) {
    expectKept(Paths(1000, "usr/bin/env"));
    Paths paths;
    for (int i = 0; i < 500; ++i) paths.insert(paths.end(), {"a/b", "c"});
    expectKept(paths);
}

TEST(SegmentBuilder, keepsAnyBytes) {
    expectKept(randomPaths(20'000, 1));
}

TEST(SegmentBuilder, keepsTheOrderOfThePathsOnManyThreads) {
    expectKept(manyPaths(100'000), 7);
}

TEST(SegmentBuilder, keepsAFolderLargerThanASlice) {
    Paths paths = manyPaths(5000);
    for (int i = 0; i < 30'000; ++i) paths.push_back("large/" + std::to_string(i));
    paths.emplace_back("after");
    expectKept(paths, 3);
}

TEST(SegmentBuilder, keepsAPathOfManyFolders) {
    std::string deep;
    for (int i = 0; i < 100'000; ++i) deep += "d/";
    expectKept({deep + "x", deep + "y", "z"});
}

TEST(SegmentBuilder, givesTheSameBytesWhateverTheThreads) {
    const CollectedPaths paths = collected(manyPaths(50'000));
    for (const SegmentForm form : {SegmentForm::kImage, SegmentForm::kPacked}) {
        const BuiltSegment alone = buildSegment(paths, form, 1);
        for (const unsigned threads : {2U, 3U, 16U}) {
            const BuiltSegment segment = buildSegment(paths, form, threads);
            EXPECT_TRUE(std::ranges::equal(segment.bytes.values(), alone.bytes.values()));
        }
    }
}

TEST(SegmentBuilder, makesOneEntryOfNeighboursInAFolder) {
    Paths paths;
    for (int i = 0; i < 20'000; ++i) paths.push_back("only/" + std::to_string(i));
    const BuiltSegment segment = buildSegment(collected(paths), SegmentForm::kImage, 4);
    const auto set = openImage(segment);
    const auto folder = set->folderOf({u"only/"});
    ASSERT_TRUE(folder.has_value());
    EXPECT_EQ(set->entriesOf(*folder).size(), 1U);
}

TEST(SegmentBuilder, makesASmallSegmentOfFewPaths) {
    Paths paths;
    for (int i = 0; i < 10; ++i) paths.push_back("/usr/share/doc/file" + std::to_string(i));
    EXPECT_LT(buildSegment(collected(paths), SegmentForm::kImage, 2).bytes.size(), 4096U);
}

}  // namespace
}  // namespace zqpaths
