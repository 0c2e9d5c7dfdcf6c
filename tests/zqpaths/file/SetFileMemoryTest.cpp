// What a set file makes its reader take is in proportion to its size, not to what it announces.

#include <gtest/gtest.h>

#include "tests/support/HeapMeter.hpp"
#include "tests/support/SetFileSums.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kFixedBytes = std::size_t{64} << 10;

std::size_t peakOfOpening(const std::string& path) {
    const compressedpaths::HeapMeter meter;
    try {
        SetFile::open(path);
    } catch (const Error&) {
        return meter.peak();
    }
    return meter.peak();
}

TEST(SetFileMemory, isNotTakenForNumbersThatCannotBe) {
    const test_support::TemporaryTree tree;
    const std::string path = tree.pathOf("s.zqp");
    writeSet(path, SetFileWriter::Mode::kCreate, {"one", "two"});
    const std::string whole = contentOf(path);
    for (const std::uint64_t value :
         {std::uint64_t{1} << 20, std::uint64_t{1} << 40, ~std::uint64_t{0}}) {
        for (std::size_t offset = 0; offset + 8 <= whole.size();
             offset += offset == 1080 ? whole.size() / 8 * 8 - 240 - 1080 : 8) {
            std::string damaged = whole;
            std::memcpy(damaged.data() + offset, &value, sizeof value);
            putSumsRight(std::as_writable_bytes(std::span(damaged)));
            writeContent(path, damaged);
            ASSERT_LE(peakOfOpening(path), kFixedBytes) << offset;
        }
    }
}

TEST(SetFileMemory, isTakenForTheDirectoryAlone) {
    const test_support::TemporaryTree tree;
    const std::string path = tree.pathOf("s.zqp");
    writeSet(path, SetFileWriter::Mode::kCreate, Texts(100, std::string(100'000, 'x')));
    const std::size_t mapped = std::filesystem::file_size(path);  // which counts as well
    EXPECT_LE(peakOfOpening(path), mapped + kFixedBytes);
}

}  // namespace
}  // namespace zqpaths
