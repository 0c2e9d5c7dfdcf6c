#include "tools/zqpaths/sets/MemoryInUse.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace zqpaths::program {
namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kPages = 512;

class MemoryInUse : public testing::Test {
protected:
    void SetUp() override { std::ofstream(file_) << std::string(kPages * kPage, 'x'); }
    void TearDown() override { std::filesystem::remove(file_); }

    // A name that the system writes otherwise than it is.
    const std::string file_ = testing::TempDir() + "memory in\nuse " + std::to_string(getpid());
};

TEST_F(MemoryInUse, countsThePagesOfAFileThatWereRead) {
    EXPECT_EQ(residentBytesOf({file_}), std::nullopt);
    const int descriptor = open(file_.c_str(), O_RDONLY | O_CLOEXEC);
    void* const bytes = mmap(nullptr, kPages * kPage, PROT_READ, MAP_SHARED, descriptor, 0);
    close(descriptor);
    ASSERT_NE(bytes, MAP_FAILED);
    EXPECT_EQ(residentBytesOf({file_}), 0);
    // The system maps pages besides that are at hand.
    const auto sum = static_cast<volatile const char*>(bytes)[kPage];
    EXPECT_EQ(sum, 'x');
    EXPECT_GE(residentBytesOf({file_}), kPage);
    for (std::size_t page = 0; page < kPages; ++page)
        EXPECT_EQ(static_cast<volatile const char*>(bytes)[page * kPage], 'x');
    EXPECT_EQ(residentBytesOf({file_}), kPages * kPage);
    EXPECT_EQ(residentBytesOf({file_ + "none", file_}), kPages * kPage);
    munmap(bytes, kPages * kPage);
    EXPECT_EQ(residentBytesOf({file_}), std::nullopt);
}

TEST_F(MemoryInUse, isNotToldOfAFileThatIsNotThere) {
    EXPECT_EQ(residentBytesOf({file_ + "none"}), std::nullopt);
    EXPECT_EQ(residentBytesOf({""}), std::nullopt);
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)  // they allocate on their own
TEST(AllocatedBytes, countsWhatIsAllocatedUntilItIsGivenBack) {
    constexpr std::size_t kMuch = 10'000'000;
    const std::uint64_t before = allocatedBytes();
    {
        const std::string much(kMuch, 'x');
        EXPECT_GE(allocatedBytes(), before + kMuch);
        EXPECT_LT(allocatedBytes(), before + 2 * kMuch);
        EXPECT_EQ(much.back(), 'x');
    }
    EXPECT_LT(allocatedBytes(), before + kMuch);
}
#endif

}  // namespace
}  // namespace zqpaths::program
