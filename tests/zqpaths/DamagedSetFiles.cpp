// Set files with bytes changed, sums made right again: whatever is asked of them is answered or
// refused, in little memory, and without made-up sums nothing goes unseen. ZQ_DAMAGES says how many
// random damages there are for each file.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdlib>
#include <iostream>
#include <random>

#include "tests/support/ImageSums.hpp"
#include "tests/support/SetFileSums.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/set/OddPaths.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/update/SetScans.hpp"
#ifdef ZQ_METERS_HEAP
#include "tests/support/HeapMeter.hpp"
#endif

namespace zqpaths {
namespace {

constexpr std::size_t kMostMemory = std::size_t{64} << 20;
constexpr std::array<std::uint64_t, 10> kTellingValues{
    0, 1, 2, 0x7F, 0xFF, 0xFFFF, 0x7FFFFFFF, 0xFFFFFFFF, std::uint64_t{1} << 40, ~std::uint64_t{0}};

/// A set file as bytes, and what is in it.
struct WholeFile {
    std::string bytes;
    std::vector<std::string> paths;
    std::vector<std::uint64_t> gone;  // numbers
    Directory directory;
};

/// A scan of some directories.
EncodedScan makeScan() {
    ScanWriter scan({"/usr", 1, {{"hidden", ""}}});
    scan.add({.subdirectoryCount = 20});
    for (std::uint64_t i = 0; i < 20; ++i) {
        const std::string name(1, static_cast<char>('a' + i));
        scan.add({.name = name, .stamp = {1, 100 + i, 5, 6}});
    }
    return std::move(scan).finish();
}

/// Two segments of odd paths, of this form, and a third of other paths; some of them gone.
WholeFile makeFile(const std::string& name, PathSetWriter::Form form) {
    WholeFile file;
    const auto write = [&](PathSetWriter::Mode mode, const std::vector<std::string>& paths) {
        PathSetWriter writer(name, mode, form);
        for (const std::string& path : paths) writer.add(path);
        writer.commit();
        file.paths.insert(file.paths.end(), paths.begin(), paths.end());
    };
    write(PathSetWriter::Mode::kReplace, randomPaths(300, 1));
    write(PathSetWriter::Mode::kAppend, randomPaths(60, 2));
    write(PathSetWriter::Mode::kAppend, std::vector<std::string>(40, "a/of-one-name"));
    PathSetWriter writer(name, PathSetWriter::Mode::kAppend);
    for (std::uint64_t number = 10; number < file.paths.size(); number += 10) {
        file.gone.push_back(number);
        writer.markGone(number);
    }
    recordScans(writer, {makeScan()});
    writer.commit();
    file.bytes = contentOf(name);
    file.directory = SetFile::open(name)->state().directory;
    return file;
}

/// Puts the sum of a part in the place of that which it had: this stands in the directory as it
/// does in no other place.
void putSumRight(std::string& bytes, std::span<const std::byte> part, std::uint64_t former) {
    const std::uint64_t sum = sumOf(part);
    const std::string_view old(reinterpret_cast<const char*>(&former), sizeof former);
    for (std::size_t at = bytes.find(old); at != std::string::npos; at = bytes.find(old, at + 8))
        std::memcpy(bytes.data() + at, &sum, sizeof sum);
}

/// Of a whole file: the sums of images, those of segments, blocks, directories and superblocks.
void putAllSumsRight(const WholeFile& whole, std::string& bytes) {
    const std::span<std::byte> file = std::as_writable_bytes(std::span(bytes));
    for (const SegmentEntry& segment : whole.directory.segments) {
        const auto damaged = file.subspan(segment.offset, segment.size);
        if (segment.form == SegmentForm::kImage) compressedpaths::putImageSumsRight(damaged);
        putSumRight(bytes, damaged, segment.sum);
    }
    for (const auto& block : {whole.directory.gone, whole.directory.scans})
        putSumRight(bytes, file.subspan(block->offset, block->size), block->sum);
    putSumsRight(file);
}

/// What was asked of a damaged file, and how it went.
struct Tally {
    std::size_t answered = 0;
    std::size_t refused = 0;
};

class DamagedSetFiles : public testing::TestWithParam<PathSetWriter::Form> {
protected:
    void SetUp() override { whole_ = makeFile(name_, GetParam()); }

    template <class Ask>
    void ask(const char* what, Ask ask) {
        try {
            ask();
            ++tally_.answered;
        } catch (const Error& error) {
            EXPECT_STRNE(error.what(), "");
            ++tally_.refused;
        } catch (const std::bad_alloc&) {
            ++tally_.refused;
        } catch (const std::exception& error) {
            ADD_FAILURE() << what << ": " << error.what();
        }
    }

    /// Everything that can be asked.
    void askAll(const PathSet& set) {
        const std::uint64_t few = std::min<std::uint64_t>(set.size(), 500);
        std::size_t bytes = 0;
        const auto count = [&](std::uint64_t number, std::string_view path) {
            bytes += path.size();
            return number < 1000;
        };
        for (std::uint64_t number = 1; number <= few; number += 7)
            ask("path", [&] { bytes += set.path(number).size(); });
        ask("forEach", [&] { set.forEach(count); });
        std::vector<std::uint64_t> scattered;
        for (std::uint64_t number = few; number > 0; number -= std::min<std::uint64_t>(number, 3))
            scattered.push_back(number);
        ask("paths", [&] { set.paths(scattered, count); });
        ask("forEach down", [&] { set.forEach(few, 1, count); });
        for (const std::string& path : {whole_.paths.front(), whole_.paths.back()})
            ask("numberOf", [&] { set.numberOf(path); });
        for (const char* const folder : {"", "/", "a", "usr/a"})
            ask("under", [&] { set.under(folder, count); });
        ask("find a text", [&] { set.find(Pattern::text("usr"), count); });
        ask("find a text with separator", [&] { set.find(Pattern::text("a/u"), count); });
        ask("count", [&] { set.count(Pattern::glob("*a*")); });
        ask("find a regex", [&] { set.find(Pattern::regex("(of|usr)-"), count); });
        ask("walk", [&] { set.walk(count); });
        askForGone(set);
        ask("iterate", [&] {
            for (const std::string_view path : set) bytes += path.size();
        });
    }

    void askForGone(const PathSet& set) {
        const std::uint64_t few = std::min<std::uint64_t>(set.size(), 200);
        for (std::uint64_t number = 1; number <= few; number += 9)
            ask("isGone", [&] { set.isGone(number); });
        if (few > 0) ask("goneCount", [&] { set.goneCount(1, few); });
        for (std::uint64_t place = 0; place < few; place += 9) {
            ask("presentNumber", [&] { set.path(set.presentNumber(place)); });
            ask("goneNumber", [&] { set.path(set.goneNumber(place)); });
        }
        ask("scans", [&] { scansOf(set); });
    }

    /// Marks a path in the damaged file, which is then as it was, or a set that can be opened.
    void mark() {
        ask("mark", [&] {
            PathSetWriter writer(name_, PathSetWriter::Mode::kAppend);
            writer.markGone(1);
            recordScans(writer, {makeScan()});
            writer.commit();
            static_cast<void>(PathSet::open(name_));
        });
    }

    /// True if nothing is wrong with it, as the set itself sees it.
    bool isTakenForWhole(const PathSet& set) {
        bool isWhole = false;
        ask("verify", [&] { isWhole = set.verify().empty(); });
        return isWhole;
    }

    bool hasThePaths(const PathSet& set) const {
        std::vector<std::string> paths;
        for (const std::string_view path : set) paths.emplace_back(path);
        std::vector<std::uint64_t> gone;
        for (std::uint64_t place = 0; place < set.goneCount(); ++place)
            gone.push_back(set.goneNumber(place));
        return paths == whole_.paths && gone == whole_.gone;
    }

    void look(const std::string& bytes, bool hasMadeUpSums) {
        writeContent(name_, bytes);
#ifdef ZQ_METERS_HEAP
        const compressedpaths::HeapMeter meter;
#endif
        ask("open", [&] {
            const PathSet set = PathSet::open(name_);
            askAll(set);
            const bool isTaken = isTakenForWhole(set);
            if (!hasMadeUpSums && isTaken) {
                EXPECT_TRUE(hasThePaths(set));
            }
            mark();
        });
#ifdef ZQ_METERS_HEAP
        EXPECT_LE(meter.peak(), kMostMemory);
#endif
    }

    void TearDown() override {  // both happen, or nothing has been tried
        std::cout << tally_.answered << " answers, " << tally_.refused << " refusals\n";
        EXPECT_GT(tally_.answered, 0U);
        EXPECT_GT(tally_.refused, 0U);
    }

    test_support::TemporaryTree tree_;
    std::string name_ = tree_.pathOf("s.zqp");
    WholeFile whole_;
    Tally tally_;
};

INSTANTIATE_TEST_SUITE_P(ofForm, DamagedSetFiles,
                         testing::Values(PathSetWriter::Form::kImage, PathSetWriter::Form::kPacked),
                         [](const auto& test) {
                             return test.param == PathSetWriter::Form::kImage ? "images" : "packed";
                         });

constexpr std::size_t kFewDamages = 400;

std::size_t damageCount() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in the program changes the environment
    const char* const count = std::getenv("ZQ_DAMAGES");
    return count == nullptr ? kFewDamages : std::stoul(count);
}

/// One to four places changed: a bit, a byte, or a number that tells.
std::string damaged(std::string bytes, std::mt19937_64& random) {
    for (std::uint64_t places = 1 + random() % 4; places > 0; --places) {
        const std::size_t at = random() % (bytes.size() - 8);
        const std::uint64_t value = kTellingValues.at(random() % kTellingValues.size());
        switch (random() % 4) {
            case 0:
                bytes[at] = static_cast<char>(bytes[at] ^ 1 << random() % 8);
                break;
            case 1:
                bytes[at] = static_cast<char>(random());
                break;
            case 2:
                std::memcpy(bytes.data() + at / 4 * 4, &value, 4);
                break;
            default:
                std::memcpy(bytes.data() + at / 8 * 8, &value, 8);
        }
    }
    return bytes;
}

TEST_P(DamagedSetFiles, areAnsweredOrRefusedWhateverChanged) {
    const std::size_t count = damageCount();
    for (std::size_t seed = 0; seed < count && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937_64 random(seed);
        std::string bytes = damaged(whole_.bytes, random);
        const bool hasMadeUpSums = seed % 3 > 0;
        if (hasMadeUpSums) putAllSumsRight(whole_, bytes);
        look(bytes, hasMadeUpSums);
    }
}

TEST_P(DamagedSetFiles, areAnsweredOrRefusedWithAnyNumberOfTheirHeadsMadeUp) {
    const bool isThorough = damageCount() > kFewDamages;
    std::vector<std::size_t> places;
    for (std::size_t at = 0; at < 128; at += 8) {
        places.push_back(at);
        places.push_back(kSuperblockOffsets[0] + at);
        places.push_back(kSuperblockOffsets[1] + at);
        places.push_back(whole_.bytes.size() - 8 - at);
        places.push_back(whole_.directory.gone->offset + at);
        places.push_back(whole_.directory.scans->offset + at);
        for (std::size_t back = 128; back < 512; back += 128)  // the directory, from its end on
            places.push_back(whole_.bytes.size() - 8 - at - back);
        for (const SegmentEntry& segment : whole_.directory.segments)
            for (const std::size_t part : {0U, 128U, 256U, 384U})
                places.push_back(segment.offset + part + at);
    }
    for (const std::size_t at : places) {
        if (at + 8 > whole_.bytes.size()) continue;
        for (std::size_t i = 0; i < kTellingValues.size(); ++i) {
            if (!isThorough && i != at / 8 % kTellingValues.size()) continue;
            const std::uint64_t value = kTellingValues.at(i);
            SCOPED_TRACE(testing::Message() << "value " << value << " at " << at);
            std::string bytes = whole_.bytes;
            std::memcpy(bytes.data() + at, &value, 8);
            putAllSumsRight(whole_, bytes);
            look(bytes, true);
            if (HasFailure()) return;
        }
    }
}

}  // namespace
}  // namespace zqpaths
