#include "tools/zqpaths/SavedForm.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "tests/tools/zqpaths/SmallSavedForm.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

using testing::ElementsAre;

constexpr std::size_t kFolderLimit = 10;

SavedForm read(const Bytes& bytes) {
    return readSavedForm(bytes, u"cba", kFolderLimit);
}

/// What the reader says of a damaged form.
std::string damageOf(const Bytes& bytes) {
    try {
        read(bytes);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::kDamaged);
        return failure.what();
    }
    return "no damage";
}

TEST(SavedForm, tellsWhatIsInASet) {
    const SavedForm form = read(saved(kBody));
    EXPECT_EQ(form.trie.nodeCount, 4U);
    EXPECT_EQ(form.trie.folderCount, 1U);
    EXPECT_EQ(form.trie.fileCount, 3U);
    EXPECT_EQ(form.trie.depth, 2U);
    EXPECT_EQ(form.trie.fileDepthSum, 6U);
    EXPECT_EQ(form.trie.widest, 3U);
    EXPECT_EQ(form.entryCount, 2U);
    EXPECT_THAT(form.codeLengths, ElementsAre(2, 2, 1));
}

TEST(SavedForm, namesTheLargestFolders) {
    const SavedForm form = read(saved(kBody));
    ASSERT_EQ(form.largestFolders.size(), 1U);
    EXPECT_THAT(form.largestFolders[0].components, ElementsAre(u"a"));
    EXPECT_EQ(form.largestFolders[0].fileCount, 3U);
}

TEST(SavedForm, tellsWhereTheBytesGo) {
    const Bytes bytes = saved(kBody);
    const SavedForm form = read(bytes);
    EXPECT_EQ(form.shape.byteSize, 10U);
    EXPECT_EQ(form.structure.byteSize, 12U);
    EXPECT_EQ(form.keys.byteSize, 21U);
    EXPECT_EQ(form.index.byteSize, 29U);
    EXPECT_EQ(form.byteSize, kBody.size());
    EXPECT_EQ(form.savedSize, bytes.size());
    const std::uint64_t sum = form.shape.savedSize + form.structure.savedSize +
                              form.keys.savedSize + form.index.savedSize;
    EXPECT_GT(sum, 0U);
    EXPECT_LE(sum, bytes.size() - 8);
}

TEST(SavedForm, readsASetWithoutPaths) {
    const SavedForm form = readSavedForm(saved(Bytes(25)), u"", kFolderLimit);
    EXPECT_EQ(form.trie.nodeCount, 0U);
    EXPECT_EQ(form.trie.depth, 0U);
    EXPECT_TRUE(form.largestFolders.empty());
    EXPECT_TRUE(form.codeLengths.empty());
}

TEST(SavedForm, refusesABodyCutAnywhereBeforeTheIndex) {
    for (std::size_t length = 0; length < kIndexAt; ++length) {
        const Bytes cut(kBody.begin(), kBody.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_NE(damageOf(saved(cut)), "no damage") << length;
    }
}

// At the end are a byte with nothing but the mark of the last block, and four of a check sum.
TEST(SavedForm, refusesAStreamCutBeforeItsEnd) {
    const Bytes whole = saved(kBody);
    for (std::size_t length = 0; length + 5 < whole.size(); ++length) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_NE(damageOf(cut), "no damage") << length;
    }
}

TEST(SavedForm, readsNoFurtherThanItsBytesWhateverTheyAre) {
    for (std::size_t place = 0; place < kBody.size(); ++place) {
        for (unsigned value = 0; value < 256; ++value) {
            Bytes body = kBody;
            body[place] = static_cast<std::uint8_t>(value);
            const std::string damage = damageOf(saved(body));
            EXPECT_TRUE(damage == "no damage" || damage.starts_with("damaged")) << damage;
        }
    }
}

TEST(SavedForm, tellsTheOffsetOfADamage) {
    Bytes body = kBody;
    body[kIndexAt + 1] = 4;
    EXPECT_EQ(damageOf(saved(body)), "damaged at byte 52: there is no width 4");
    body = kBody;
    body[0] = 0xFF;
    EXPECT_EQ(damageOf(saved(body)), "damaged at byte 16: 255 bytes are announced, 64 are left");
    body = kBody;
    body[kStructureAt + 1] = 4;
    EXPECT_EQ(damageOf(saved(body)), "damaged: node 1 of the trie is of the unknown kind 4");
    body = kBody;
    body[kStructureAt + 3] = 2;
    EXPECT_EQ(damageOf(saved(body)), "damaged: the trie is not complete after its 4 nodes");
    Bytes bytes = saved(kBody);
    bytes[8] ^= 1;
    EXPECT_EQ(damageOf(bytes), "damaged: the stream breaks at its byte 2, after 0 of 72 bytes");
}

TEST(SavedForm, takesNoMemoryForMoreThanAStreamCanHold) {
    const std::string damage = damageOf(savedWith(kBody, std::uint64_t{1} << 60));
    EXPECT_NE(damage.find("cannot hold 1152921504606846976"), std::string::npos) << damage;
}

TEST(SavedForm, refusesAShapeWithMoreLeavesThanCharacters) {
    EXPECT_THROW(readSavedForm(saved(kBody), u"cb", kFolderLimit), Failure);
}

}  // namespace
}  // namespace zqpaths
