#include "tools/zqpaths/CutShortFile.hpp"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

namespace zqpaths::program {
namespace {

/// Reads a page of a file that ends before it.
void readBeyondTheEnd() {
    constexpr std::size_t kPage = 4096;
    const int file = memfd_create("cut", MFD_CLOEXEC);
    if (ftruncate(file, kPage) != 0) std::exit(1);
    const void* const page = mmap(nullptr, kPage, PROT_READ, MAP_SHARED, file, 0);
    if (page == MAP_FAILED || ftruncate(file, 0) != 0) std::exit(1);
    std::exit(*static_cast<const volatile char*>(page));
}

TEST(CutShortFileDeathTest, isNamedAndEndsTheProgramAsAFailure) {
    EXPECT_EXIT(
        {
            watchForCutShortFiles();
            nameWhatIsRead("old.zqp");
            nameWhatIsRead("s.zqp");
            readBeyondTheEnd();
        },
        testing::ExitedWithCode(2), "^zqpaths: s.zqp: was cut short while it was read\n$");
}

TEST(CutShortFileDeathTest, isNotNamedWhereItsNameIsTooLong) {
    EXPECT_EXIT(
        {
            watchForCutShortFiles();
            nameWhatIsRead(std::string(10'000, 'x'));
            readBeyondTheEnd();
        },
        testing::ExitedWithCode(2), "^zqpaths: a set was cut short while it was read\n$");
}

}  // namespace
}  // namespace zqpaths::program
