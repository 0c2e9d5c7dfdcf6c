#include "zqpaths/file/SetFileLayout.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>

#include "compressedpaths/Image.hpp"
#include "tests/support/SetFileSums.hpp"
#include "tests/support/SetFiles.hpp"

namespace zqpaths {
namespace {

using FileBytes = std::vector<std::byte>;

constexpr Superblock kSuperblock{3, 8192, 72, 4, 8192 + 72 + kSuperblockSize};

SegmentEntry entryAt(std::uint64_t offset, std::uint64_t size) {
    return {SegmentForm::kImage, offset, size, 1, 2, 0, 0};
}

/// A file of this directory, after room for segments up to `directoryOffset`.
FileBytes fileOf(const Directory& directory, std::uint64_t directoryOffset = 3 * kPageSize) {
    const FileBytes encoded = encodeDirectory(directory);
    Superblock superblock{2, directoryOffset, encoded.size(), sumOf(encoded), 0};
    superblock.end = directoryOffset + encoded.size() + kSuperblockSize;
    FileBytes file(superblock.end);
    const auto put = [&](std::uint64_t offset, std::span<const std::byte> bytes) {
        std::copy(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(offset));
    };
    Superblock earlier = superblock;
    earlier.sequence = 1;
    put(0, encodeHeader({0, {earlier, superblock}}));
    put(directoryOffset, encoded);
    put(superblock.end - kSuperblockSize, encodeSuperblock(superblock));
    return file;
}

CommittedState stateOf(const FileBytes& file) {
    return committedState(std::span(file).first(std::min<std::size_t>(file.size(), kPageSize)),
                          file);
}

void put32(FileBytes& bytes, std::size_t offset, std::uint32_t value) {
    for (unsigned i = 0; i < 4; ++i) bytes.at(offset + i) = static_cast<std::byte>(value >> 8 * i);
}

TEST(SetFileHeader, comesBack) {
    for (const Header& header :
         {Header{}, Header{5, {kSuperblock, std::nullopt}}, Header{0, {std::nullopt, kSuperblock}}})
        EXPECT_EQ(decodeHeader(encodeHeader(header)), header);
}

TEST(SetFileHeader, isDamagedIfAnyBitOfItIsTurned) {
    const auto page = encodeHeader({1, {}});
    for (std::size_t bit = 0; bit < 8 * kHeaderSize; ++bit) {
        auto damaged = page;
        damaged[bit / 8] ^= static_cast<std::byte>(1U << bit % 8);
        const Refusal refusal = refusalOf([&] { decodeHeader(damaged); });
        const bool isMagic = bit / 8 < kMagic.size();
        EXPECT_EQ(refusal.text, isMagic ? "is no saved set" : "the header is damaged") << bit;
    }
}

TEST(SetFileHeader, tellsThatAFileIsOfALaterVersion) {
    for (const std::size_t offset :
         {std::size_t{8}, std::size_t{12}}) {  // the version, flags that must be known
        FileBytes file = fileOf({});
        put32(file, offset, 0x80000002);
        putSumsRight(file);
        const Refusal refusal = refusalOf([&] { stateOf(file); });
        EXPECT_EQ(refusal.kind, ErrorKind::kNotASet);
        EXPECT_EQ(refusal.text, "is a set that needs a newer version of this program");
    }
}

TEST(SetFileHeader, mayHaveFlagsThatNobodyKnows) {
    FileBytes file = fileOf({});
    put32(file, 16, 0xFFFFFFFF);
    putSumsRight(file);
    EXPECT_EQ(stateOf(file).header.flags, 0xFFFFFFFFU);
}

/// What a writer that may replace a set is told of a file.
bool isOfOurs(const FileBytes& file) {
    const std::span<const std::byte> bytes(file);
    return zqpaths::isOfOurs(bytes.first(std::min(bytes.size(), kTellingFront)),
                             bytes.last(std::min(bytes.size(), kTellingEnd)));
}

TEST(SetFileHeader, isToldFromOtherFiles) {
    EXPECT_TRUE(isOfOurs(fileOf({})));
    for (const char* text : {"a text", "\x89PNG\r\n\x1A\n", "zqp"}) {
        const auto bytes = bytesOf(text);
        EXPECT_FALSE(isOfOurs(FileBytes(bytes.begin(), bytes.end()))) << text;
    }
    for (const std::size_t size : {1U, 511U, 4096U, 5000U, 20'000U})
        EXPECT_FALSE(isOfOurs(FileBytes(size))) << size;
}

TEST(SetFileHeader, isToldWhereverTheFileIsCut) {
    const FileBytes whole = fileOf({});
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_TRUE(
            isOfOurs(FileBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))));
}

TEST(SetFileHeader, isToldByWhateverIsLeftOfAFile) {
    const FileBytes whole = fileOf({});
    const auto without = [&whole](std::size_t begin, std::size_t end) {
        FileBytes file = whole;
        std::fill(file.begin() + static_cast<std::ptrdiff_t>(begin),
                  file.begin() + static_cast<std::ptrdiff_t>(end), std::byte{0});
        return file;
    };
    EXPECT_TRUE(isOfOurs(without(0, 1)));                       // the magic number
    EXPECT_TRUE(isOfOurs(without(0, kHeaderSize)));             // the header
    EXPECT_TRUE(isOfOurs(without(0, kSuperblockOffsets[1])));   // and a superblock
    EXPECT_TRUE(isOfOurs(without(0, kPageSize)));               // the whole page
    EXPECT_TRUE(isOfOurs(without(kHeaderSize, whole.size())));  // all but the header
    EXPECT_FALSE(isOfOurs(without(1, whole.size())));           // all but one byte
    FileBytes image = without(0, whole.size());
    std::ranges::copy(std::as_bytes(std::span(compressedpaths::image::kMagic)),
                      image.begin() + kPageSize);
    EXPECT_TRUE(isOfOurs(image));
}

TEST(SetFileSuperblock, comesBack) {
    EXPECT_EQ(decodeSuperblock(encodeSuperblock(kSuperblock)), kSuperblock);
}

TEST(SetFileSuperblock, isNoneIfAnyBitOfItIsTurned) {
    const auto bytes = encodeSuperblock(kSuperblock);
    for (std::size_t bit = 0; bit < 8 * bytes.size(); ++bit) {
        auto damaged = bytes;
        damaged[bit / 8] ^= static_cast<std::byte>(1U << bit % 8);
        EXPECT_FALSE(decodeSuperblock(damaged)) << bit;
    }
    EXPECT_FALSE(decodeSuperblock(std::array<std::byte, kSuperblockSize>{}));
}

TEST(SetFileSuperblock, isNoneIfItSaysWhatCannotBe) {
    const std::vector<std::function<void(Superblock&)>> changes{
        [](Superblock& block) { block.sequence = kMaxSequence + 1; },
        [](Superblock& block) { block.directoryOffset = 0; },
        [](Superblock& block) { block.directoryOffset -= 4; },
        [](Superblock& block) { block.directoryOffset = ~std::uint64_t{7}; },
        [](Superblock& block) { block.directorySize = ~std::uint64_t{0}; },
        [](Superblock& block) { block.directorySize += 8; },
        [](Superblock& block) { block.end = 0; },
        [](Superblock& block) { block.end = block.directoryOffset + 1; },
        [](Superblock& block) { block.end = ~std::uint64_t{0}; }};
    for (std::size_t i = 0; i < changes.size(); ++i) {
        Superblock changed = kSuperblock;
        changes[i](changed);
        EXPECT_FALSE(decodeSuperblock(encodeSuperblock(changed))) << i;
    }
}

TEST(SetFileDirectory, comesBack) {
    const Directory directory{
        {{SegmentForm::kImage, 4096, 10, 3, 40, 0, 77},
         {SegmentForm::kPacked, 8192, 4096, 1, 2, 8, ~std::uint64_t{0}}},
        {{1, 2, {}}, {0xFFFFFFFF, 0, {std::byte{1}, std::byte{2}, std::byte{3}}}}};
    const CommittedState state = stateOf(fileOf(directory));
    EXPECT_EQ(state.directory, directory);
    EXPECT_EQ(state.directory.pathCount(), 4U);
    EXPECT_TRUE(state.isLatest);
    EXPECT_EQ(state.slot, 1U);
    EXPECT_EQ(stateOf(fileOf({})).directory, Directory{});
}

TEST(SetFileDirectory, hasTheFieldsOfASegmentInTheOrderOfTheFormat) {
    const std::vector<std::byte> bytes =
        encodeDirectory({{{SegmentForm::kPacked, 4096, 12, 3, 40, 8, 77}}, {}});
    auto reader =
        readerOf(std::span(bytes).subspan(16));  // past tag, flags and size of the section
    EXPECT_EQ(reader.readInteger(4), 2U);        // the form, and four bytes that are kept
    EXPECT_EQ(reader.readInteger(4), 0U);
    for (const std::uint64_t field : {4096U, 12U, 3U, 40U, 8U, 77U})
        EXPECT_EQ(reader.readInteger(8), field);
    EXPECT_TRUE(reader.isAtEnd());
}

/// A directory of a segment with ten paths, and of a block for each thing that there can be.
Directory directoryWithBlocks() {
    return {{{SegmentForm::kImage, 4096, 10, 10, 40, 0, 77}},
            {},
            BlockEntry{4112, 32, 3, 1},
            BlockEntry{4144, 1, 9, 2}};
}

TEST(SetFileDirectory, comesBackWithItsBlocks) {
    Directory directory = directoryWithBlocks();
    EXPECT_EQ(stateOf(fileOf(directory)).directory, directory);
    directory.gone.reset();
    EXPECT_EQ(stateOf(fileOf(directory)).directory, directory);
}

TEST(SetFileDirectory, isRefusedIfABlockIsWhereNoneCanBeOrSaysWhatCannotBe) {
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    const std::vector<std::function<void(BlockEntry&)>> changes{
        [](BlockEntry& block) { block.offset = 0; },          // the header
        [](BlockEntry& block) { block.offset += 4; },         // where no integer is
        [](BlockEntry& block) { block.offset = 4096; },       // over the segment
        [](BlockEntry& block) { block.offset = 2 * 4096; },   // up to the directory, and over it
        [](BlockEntry& block) { block.offset = kMost - 7; },  // past all numbers
        [](BlockEntry& block) { block.size = 0; },
        [](BlockEntry& block) { block.size = kMost - 15; },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        for (const bool isGone : {true, false}) {
            Directory directory = directoryWithBlocks();
            directory.gone->size = directory.scans->size = 8192;
            (isGone ? directory.scans : directory.gone).reset();
            changes[i](isGone ? *directory.gone : *directory.scans);
            EXPECT_EQ(refusalOf([&] { stateOf(fileOf(directory)); }).kind, ErrorKind::kDamaged)
                << i;
        }
    }
    Directory twice = directoryWithBlocks();
    twice.scans->offset = twice.gone->offset;
    EXPECT_EQ(refusalOf([&] { stateOf(fileOf(twice)); }).text, "segments lie over one another");
}

TEST(SetFileDirectory, isRefusedIfMoreOrFewerPathsAreGoneThanCanBe) {
    const auto isRefused = [](std::uint64_t size, std::uint64_t count) {
        Directory directory = directoryWithBlocks();
        directory.scans.reset();
        directory.gone->size = size;
        directory.gone->count = count;
        try {
            stateOf(fileOf(directory));
            return false;
        } catch (const Error& error) {
            return error.kind() == ErrorKind::kDamaged;
        }
    };
    EXPECT_FALSE(isRefused(32, 2));
    EXPECT_FALSE(isRefused(32, 10));
    EXPECT_TRUE(isRefused(32, 1));   // two runs
    EXPECT_TRUE(isRefused(32, 11));  // of ten paths
    EXPECT_TRUE(isRefused(24, 2));   // half a run
}

TEST(SetFileDirectory, isRefusedIfASectionOfABlockIsOfAnotherSizeOrThereTwice) {
    const Directory directory = directoryWithBlocks();
    const std::size_t gone = 3 * kPageSize + 16 + 56;
    const std::size_t scans = gone + 16 + 32;
    const auto changed = [&](std::size_t offset, std::uint32_t value) {
        FileBytes file = fileOf(directory);
        put32(file, offset, value);
        putSumsRight(file);
        return refusalOf([&] { stateOf(file); }).text;
    };
    EXPECT_EQ(changed(gone + 8, 48 + 32), "the directory ends within a block");
    EXPECT_EQ(changed(scans, 'G' | 'O' << 8 | 'N' << 16 | 'E' << 24),
              "the directory lists its gone paths twice");
    EXPECT_EQ(changed(gone, 'S' | 'C' << 8 | 'A' << 16 | 'N' << 24),
              "the directory lists its scans twice");
}

TEST(SetFileDirectory, mayListSegmentsInAnyOrder) {
    const Directory directory{{entryAt(8192, 4096), entryAt(4096, 4096)}, {}};
    EXPECT_EQ(stateOf(fileOf(directory)).directory, directory);
}

TEST(SetFileDirectory, isRefusedIfASegmentIsWhereNoneCanBe) {
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    const SegmentEntry places[] = {
        entryAt(0, 10),            // the header
        entryAt(5000, 10),         // no page
        entryAt(4096, 0),          // nothing
        entryAt(4096, 8193),       // over the directory
        entryAt(4096, kMost),      // past the end of all numbers
        entryAt(1 << 20, 10),      // past the end of the file
        entryAt(kMost - 4095, 1),  // the last page that has a number
    };
    for (const SegmentEntry& entry : places) {
        const Refusal refusal = refusalOf([&] { stateOf(fileOf({{entry}, {}})); });
        EXPECT_EQ(refusal.kind, ErrorKind::kDamaged) << entry.offset;
    }
    EXPECT_EQ(refusalOf([&] {
                  stateOf(fileOf({{entryAt(5000, 10)}, {}}));
              }).text,
              "the directory says of segment 1 what cannot be");
}

TEST(SetFileDirectory, isRefusedIfSegmentsLieOverOneAnother) {
    for (const std::uint64_t size : {std::uint64_t{4097}, std::uint64_t{8192}})
        EXPECT_EQ(refusalOf([&] {
                      stateOf(fileOf({{entryAt(8192, 1), entryAt(4096, size)}, {}}));
                  }).text,
                  "segments lie over one another");
    EXPECT_EQ(refusalOf([] {
                  stateOf(fileOf({{entryAt(4096, 1), entryAt(4096, 1)}, {}}));
              }).kind,
              ErrorKind::kDamaged);
}

TEST(SetFileDirectory, isRefusedIfItCountsWhatCannotBe) {
    const std::vector<std::function<void(SegmentEntry&)>> changes{
        [](SegmentEntry& entry) { entry.pathCount = 0; },
        [](SegmentEntry& entry) { entry.pathCount = 2; },  // of two bytes in all
        [](SegmentEntry& entry) { entry.textSize = 1; },
        [](SegmentEntry& entry) { entry.textSize = ~std::uint64_t{0}; },
        [](SegmentEntry& entry) { entry.treeStringSize = 2; },  // of an image
        [](SegmentEntry& entry) {
            entry.form = SegmentForm::kPacked;
            entry.treeStringSize = 3;
        },
        [](SegmentEntry& entry) {
            entry.form = SegmentForm::kPacked;
            entry.treeStringSize = 12;
        },
        [](SegmentEntry& entry) { entry.pathCount = 11; },  // in ten bytes
        [](SegmentEntry& entry) {
            entry.form = SegmentForm::kPacked;
            entry.pathCount = std::uint64_t{1} << 20;
        }};
    for (std::size_t i = 0; i < changes.size(); ++i) {
        SegmentEntry entry = entryAt(4096, 10);
        changes[i](entry);
        EXPECT_EQ(refusalOf([&] {
                      stateOf(fileOf({{entry}, {}}));
                  }).kind,
                  ErrorKind::kDamaged)
            << i;
    }
    SegmentEntry many = entryAt(4096, 10);
    many.textSize = std::uint64_t{1} << 61;
    Directory directory;
    for (std::uint64_t i = 1; i <= 3; ++i) {
        many.offset = i * kPageSize;
        directory.segments.push_back(many);
    }
    EXPECT_EQ(refusalOf([&] { stateOf(fileOf(directory, 4 * kPageSize)); }).text,
              "the directory counts more paths than there can be");
}

TEST(SetFileDirectory, isRefusedIfASegmentIsOfALaterForm) {
    const Directory directory{{entryAt(4096, 10)}, {}};
    for (const std::size_t offset :
         {std::size_t{16}, std::size_t{20}}) {  // the form, and what follows it
        FileBytes file = fileOf(directory);
        put32(file, 3 * kPageSize + offset, 3);
        putSumsRight(file);
        EXPECT_EQ(refusalOf([&] { stateOf(file); }).kind, ErrorKind::kNotASet);
    }
}

TEST(SetFileDirectory, isRefusedIfItsSectionsDoNotFit) {
    const Directory directory{{entryAt(4096, 10)}, {{5, 2, {std::byte{1}}}}};
    const std::size_t first = 3 * kPageSize;
    const std::size_t second = first + 16 + 56;
    const auto changed = [&](std::size_t offset, std::uint32_t value) {
        FileBytes file = fileOf(directory);
        put32(file, offset, value);
        putSumsRight(file);
        return refusalOf([&] { stateOf(file); }).text;
    };
    EXPECT_EQ(changed(first, 6), "is a set that needs a newer version of this program");
    EXPECT_EQ(changed(first + 8, 48), "the directory ends within a segment");
    EXPECT_EQ(changed(first + 12, 1), "the directory ends within a section");
    EXPECT_EQ(changed(second + 8, 9), "the directory ends within a section");
    EXPECT_EQ(changed(second + 4, 1), "is a set that needs a newer version of this program");
    EXPECT_EQ(changed(second, 'S' | 'E' << 8 | 'G' << 16 | 'M' << 24),
              "the directory lists its segments twice");
}

TEST(SetFileDirectory, isDamagedWhereItLiesOutsideItsFile) {
    const FileBytes file = fileOf({});
    const Superblock whole = stateOf(file).superblock;
    EXPECT_NO_THROW(decodeDirectory(file, whole));
    const std::vector<std::function<void(Superblock&)>> changes{
        [](Superblock& block) { block.directoryOffset = kPageSize - 8; },
        [](Superblock& block) { block.directoryOffset = block.end + 8; },
        [](Superblock& block) { block.directorySize = block.end - block.directoryOffset + 1; },
        [](Superblock& block) { block.end += 8; }};
    for (const auto& change : changes) {
        Superblock outside = whole;
        change(outside);
        EXPECT_EQ(
            refusalOf([&] { decodeDirectory(file, outside); }).text,
            "the directory at byte " + std::to_string(outside.directoryOffset) + " is damaged");
    }
}

TEST(SetFileDirectory, isRefusedIfItListsNoSegments) {
    FileBytes file = fileOf({});
    put32(file, 3 * kPageSize, 6);      // another tag
    put32(file, 3 * kPageSize + 4, 0);  // that need not be known
    putSumsRight(file);
    EXPECT_EQ(refusalOf([&] { stateOf(file); }).text, "the directory lists no segments");
}

TEST(SetFileDirectory, canBeRewrittenIfAllItsSectionsMayBeCopied) {
    EXPECT_TRUE(canBeRewritten({{}, {}}));
    EXPECT_TRUE(canBeRewritten({{}, {{1, 2, {}}}}));
    EXPECT_FALSE(canBeRewritten({{}, {{1, 2, {}}, {2, 0, {}}}}));
}

TEST(CommittedState, isOfTheHigherSequence) {
    FileBytes file = fileOf({});
    Header header = decodeHeader(std::span(file).first(kPageSize));
    for (const std::uint64_t sequence : {std::uint64_t{1}, std::uint64_t{3}}) {
        header.superblocks[0]->sequence = sequence;
        const auto page = encodeHeader(header);
        EXPECT_EQ(committedState(page, file).slot, sequence == 1 ? 1U : 0U);
    }
}

TEST(CommittedState, mayEndBeforeTheFileDoes) {
    FileBytes file = fileOf({});
    const CommittedState before = stateOf(file);
    file.resize(file.size() + 100'000);
    EXPECT_EQ(stateOf(file).superblock, before.superblock);
}

TEST(CommittedState, isFoundAtTheEndIfBothSuperblocksAreDamaged) {
    FileBytes file = fileOf({});
    const CommittedState before = stateOf(file);
    for (const std::size_t offset : kSuperblockOffsets) file[offset] ^= std::byte{1};
    const CommittedState state = stateOf(file);
    EXPECT_EQ(state.superblock, before.superblock);
    EXPECT_EQ(state.slot, std::nullopt);
    file.push_back({});
    EXPECT_EQ(refusalOf([&] { stateOf(file); }).text, "both superblocks are damaged");
}

TEST(CommittedState, isNotTakenFromTheEndIfThatSaysThatTheFileEndsElsewhere) {
    FileBytes file = fileOf({});
    for (const std::size_t offset : kSuperblockOffsets) file[offset] ^= std::byte{1};
    const FileBytes closing(file.end() - kSuperblockSize, file.end());
    file.insert(file.end(), closing.begin(), closing.end());
    EXPECT_EQ(refusalOf([&] { stateOf(file); }).text, "both superblocks are damaged");
}

TEST(CommittedState, isNotTheOneAtTheEndIfTheHeaderIsWhole) {
    // As a writer leaves it that is ended before it writes the superblock.
    FileBytes file = fileOf({});
    const CommittedState before = stateOf(file);
    const FileBytes more = encodeDirectory({});
    Superblock next{9, file.size(), more.size(), sumOf(more), 0};
    next.end = next.directoryOffset + more.size() + kSuperblockSize;
    file.insert(file.end(), more.begin(), more.end());
    const auto closing = encodeSuperblock(next);
    file.insert(file.end(), closing.begin(), closing.end());
    EXPECT_EQ(stateOf(file).superblock, before.superblock);
    file[kSuperblockOffsets[0]] ^= std::byte{1};
    EXPECT_EQ(stateOf(file).superblock, next);
}

}  // namespace
}  // namespace zqpaths
