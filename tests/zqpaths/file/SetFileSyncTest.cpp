// Nothing is named before it is on the device: in which order a set file is written, synced and
// given its name. A process that ends shows nothing of this, a device that loses its power does.

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <string>

#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/file/SetFileChanges.hpp"
#include "zqpaths/file/SetFileLayout.hpp"

namespace zqpaths {
namespace {

// A letter for each call, as many of one kind in a row are one:
// w a write past the first page, h one into it, s a sync of a file, n a new name, d a sync of a
// directory.
thread_local std::string* recordedCalls = nullptr;  // of nobody if null

void recordCall(char call) {
    if (recordedCalls != nullptr && !recordedCalls->ends_with(call)) recordedCalls->push_back(call);
}

std::string callsOf(const std::string& stepName) {
    const test_support::TemporaryTree tree;
    tree.addDirectory("folder");
    const std::string path = tree.pathOf("folder/s.zqp");
    std::string calls;
    for (const SetFileStep& step : setFileSteps()) {
        if (step.name != stepName) continue;
        step.prepare(path);
        recordedCalls = &calls;
        step.run(path);
        recordedCalls = nullptr;
        EXPECT_EQ(contentAt(path), step.after);
    }
    return calls;
}

TEST(ASetFileOnADevice, isThereWholeBeforeItHasItsName) {
    EXPECT_EQ(callsOf("creating"), "whsnd");
    EXPECT_EQ(callsOf("replacing"), "whsnd");
    EXPECT_EQ(callsOf("replacing nothing"), "whsnd");
}

TEST(ASetFileOnADevice, hasWhatIsAppendedBeforeTheSuperblockThatNamesIt) {
    EXPECT_EQ(callsOf("appending"), "wshs");
    EXPECT_EQ(callsOf("updating"), "wshs");
}

TEST(ASetFileOnADevice, isThereCompactedBeforeItTakesThePlaceOfTheOldOne) {
    EXPECT_EQ(callsOf("compacting"), "whsnd");
    EXPECT_EQ(callsOf("updating and compacting"), "whsnd");
}

}  // namespace
}  // namespace zqpaths

extern "C" {

ssize_t pwrite(int file, const void* bytes, size_t size, off_t offset) {
    zqpaths::recordCall(offset < static_cast<off_t>(zqpaths::kPageSize) ? 'h' : 'w');
    return ::syscall(SYS_pwrite64, file, bytes, size, offset);
}

int fdatasync(int file) {
    zqpaths::recordCall('s');
    return static_cast<int>(::syscall(SYS_fdatasync, file));
}

int fsync(int file) {
    zqpaths::recordCall('d');
    return static_cast<int>(::syscall(SYS_fsync, file));
}

int rename(const char* from, const char* to) noexcept {
    zqpaths::recordCall('n');
    return static_cast<int>(::syscall(SYS_rename, from, to));
}

int renameat2(int fromDirectory, const char* from, int toDirectory, const char* to,
              unsigned flags) noexcept {
    zqpaths::recordCall('n');
    return static_cast<int>(::syscall(SYS_renameat2, fromDirectory, from, toDirectory, to, flags));
}
}
