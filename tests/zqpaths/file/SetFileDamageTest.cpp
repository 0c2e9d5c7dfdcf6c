// Damaged set files: what is wrong is refused or seen, and what is read lies in the file.

#include <gtest/gtest.h>

#include <random>

#include "tests/support/SetFileSums.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace zqpaths {
namespace {

using FileBytes = std::vector<std::byte>;

/// The bytes of a file that has grown, so that it has two states and dead bytes.
class DamagedSetFile : public ::testing::Test {
protected:
    DamagedSetFile() {
        writeSet(path_, SetFileWriter::Mode::kCreate, {"one", std::string(5000, '2'), "three"});
        SetFileWriter writer(path_, SetFileWriter::Mode::kAppend);
        writer.dropFrom(2);
        appendAll(writer, {"four", "five"});
        writer.putGone({2, bytesOf("thirty-two bytes, two gone paths")});
        writer.putScans({9, bytesOf("scans")});
        writer.commit();
        const std::string content = contentOf(path_);
        const auto bytes = bytesOf(content);
        whole_.assign(bytes.begin(), bytes.end());
    }

    /// Nothing that is read of a file lies outside of it, and all of it is in proportion.
    static void expectSane(const FileBytes& file) {
        try {
            const auto firstPage =
                std::span(file).first(std::min<std::size_t>(file.size(), kPageSize));
            const CommittedState state = committedState(firstPage, file);
            EXPECT_LE(state.superblock.end, file.size());
            EXPECT_LE(state.directory.segments.size(), file.size() / kPageSize);
            for (const SegmentEntry& entry : state.directory.segments) {
                EXPECT_GE(entry.offset, kPageSize);
                EXPECT_LE(entry.offset, file.size());
                EXPECT_LE(entry.size, file.size() - entry.offset);
            }
            for (const auto& block : {state.directory.gone, state.directory.scans}) {
                if (!block) continue;
                EXPECT_GE(block->offset, kPageSize);
                EXPECT_EQ(block->offset % kBlockAlignment, 0U);
                EXPECT_LE(block->offset, file.size());
                EXPECT_LE(block->size, file.size() - block->offset);
            }
        } catch (const Error& error) {
            EXPECT_TRUE(error.kind() == ErrorKind::kDamaged || error.kind() == ErrorKind::kNotASet)
                << error.what();
        }
    }

    static std::mt19937_64 randomOf(std::uint64_t seed) {
        return std::mt19937_64(seed);  // a failure is to come again in the next run
    }

    /// Changes up to four integers, most of them where the form has some.
    FileBytes damaged(std::mt19937_64& random) const {
        static constexpr std::uint64_t kValues[] = {0,
                                                    1,
                                                    2,
                                                    8,
                                                    4095,
                                                    4096,
                                                    8192,
                                                    12'288,
                                                    std::uint64_t{1} << 32,
                                                    std::uint64_t{1} << 62,
                                                    std::uint64_t{1} << 63,
                                                    ~std::uint64_t{0}};
        FileBytes file = whole_;
        for (std::uint64_t change = random() % 4 + 1; change > 0; --change) {
            static constexpr std::size_t kPlaces[] = {0, 512, 1024, 0};
            std::size_t place = kPlaces[random() % 4];
            if (place == 0 && random() % 2 == 0) place = file.size() - 400;
            const std::size_t offset = place + random() % 40 * 8 % (file.size() - place - 8);
            const std::uint64_t value = random() % 3 == 0 ? random() >> random() % 64
                                                          : kValues[random() % std::size(kValues)];
            std::memcpy(file.data() + offset, &value, random() % 8 + 1);
        }
        if (random() % 10 == 0) file.resize(random() % (file.size() + 1));
        if (random() % 10 == 0) file.resize(file.size() + random() % 10'000);
        return file;
    }

    test_support::TemporaryTree tree_;
    std::string path_ = tree_.pathOf("s.zqp");
    FileBytes whole_;
};

TEST_F(DamagedSetFile, isSeenWhereverABitIsTurned) {
    const CommittedState state = committedState(std::span(whole_).first(kPageSize), whole_);
    std::vector<std::pair<std::uint64_t, std::uint64_t>> parts{
        {0, kHeaderSize},
        {kSuperblockOffsets[0], kSuperblockSize},
        {kSuperblockOffsets[1], kSuperblockSize},
        {state.superblock.directoryOffset, state.superblock.directorySize}};
    for (const SegmentEntry& entry : state.directory.segments)
        parts.emplace_back(entry.offset, std::min<std::uint64_t>(entry.size, 100));
    for (const auto& block : {state.directory.gone, state.directory.scans})
        parts.emplace_back(block->offset, block->size);
    for (const auto& [begin, size] : parts) {
        for (std::uint64_t offset = begin; offset < begin + size; ++offset) {
            FileBytes damaged = whole_;
            damaged[offset] ^= std::byte{0x10};
            writeContent(path_, {reinterpret_cast<const char*>(damaged.data()), damaged.size()});
            try {
                EXPECT_FALSE(SetFile::open(path_)->verifySums().empty()) << offset;
            } catch (const Error& error) {
                EXPECT_TRUE(error.kind() == ErrorKind::kDamaged || offset < kMagic.size());
            }
        }
    }
}

TEST_F(DamagedSetFile, isRefusedAtEveryShorterLength) {
    for (std::size_t size = 0; size < whole_.size(); size += size < 1100 ? 1 : 13) {
        const FileBytes cut(whole_.begin(), whole_.begin() + static_cast<std::ptrdiff_t>(size));
        const auto firstPage = std::span(cut).first(std::min<std::size_t>(size, kPageSize));
        const Refusal refusal = refusalOf([&] { committedState(firstPage, cut); });
        EXPECT_EQ(refusal.kind, size < kMagic.size() ? ErrorKind::kNotASet : ErrorKind::kDamaged);
    }
}

TEST_F(DamagedSetFile, isRefusedOrReadWithinItsBounds) {
    std::mt19937_64 random = randomOf(1);
    for (int round = 0; round < 20'000 && !HasFailure(); ++round) expectSane(damaged(random));
}

TEST_F(DamagedSetFile, isRefusedOrReadWithinItsBoundsIfItsSumsAreRight) {
    std::mt19937_64 random = randomOf(2);
    for (int round = 0; round < 20'000 && !HasFailure(); ++round) {
        FileBytes file = damaged(random);
        putSumsRight(file);
        expectSane(file);
    }
}

TEST_F(DamagedSetFile, isOpenedOrRefusedAndAddedToOrLeftAlone) {
    std::mt19937_64 random = randomOf(3);
    for (int round = 0; round < 1'000 && !HasFailure(); ++round) {
        FileBytes file = damaged(random);
        if (round % 2 == 0) putSumsRight(file);
        const std::string content(reinterpret_cast<const char*>(file.data()), file.size());
        writeContent(path_, content);
        Texts before;
        try {
            before = segmentsOf(*SetFile::open(path_));
        } catch (const Error&) {
            EXPECT_THROW(SetFileWriter(path_, SetFileWriter::Mode::kAppend), Error);
            continue;
        }
        try {
            writeSet(path_, SetFileWriter::Mode::kAppend, {"more"});
            before.emplace_back("more");
            EXPECT_EQ(segmentsOf(*SetFile::open(path_)), before);
        } catch (const Error&) {
            EXPECT_EQ(contentOf(path_), content);
        }
    }
}

}  // namespace
}  // namespace zqpaths
