#include "zqpaths/file/SystemFile.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <filesystem>

#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace zqpaths {
namespace {

class ASystemFile : public ::testing::Test {
protected:
    test_support::TemporaryTree tree_;
    std::string path_ = tree_.pathOf("f");
};

TEST_F(ASystemFile, readsWhatItHasWritten) {
    SystemFile file = SystemFile::open(path_, O_RDWR | O_CREAT, "name");
    file.writeAt(3, bytesOf("text"));
    std::array<std::byte, 10> bytes{};
    EXPECT_EQ(file.readAt(2, bytes), 5U);
    EXPECT_EQ(bytes[0], std::byte{0});
    EXPECT_EQ(bytes[1], std::byte{'t'});
    EXPECT_EQ(file.readAt(7, bytes), 0U);
    EXPECT_EQ(file.size(), 7U);
    file.truncate(4);
    file.sync();
    EXPECT_EQ(contentOf(path_), std::string("\0\0\0t", 4));
}

TEST_F(ASystemFile, saysTheNameThatPeopleKnow) {
    const Refusal missing = refusalOf([&] { SystemFile::open(path_, O_RDONLY, "the set"); });
    EXPECT_EQ(missing.kind, ErrorKind::kNotFound);
    EXPECT_EQ(missing.text, "the set: No such file or directory");
    SystemFile file = SystemFile::open(tree_.addFile("f"), O_RDONLY, "the set");
    EXPECT_EQ(refusalOf([&] { file.writeAt(0, bytesOf("x")); }).text,
              "the set: Bad file descriptor");
    EXPECT_EQ(refusalOf([&] { file.truncate(1); }).text, "the set: Invalid argument");
}

TEST_F(ASystemFile, isClosedForTheProgramsThatAreStarted) {
    const SystemFile file = SystemFile::open(path_, O_RDWR | O_CREAT, "f");
    EXPECT_NE(::fcntl(file.number(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_F(ASystemFile, isMovedNotCopied) {
    SystemFile file = SystemFile::open(path_, O_RDWR | O_CREAT, "f");
    const int number = file.number();
    SystemFile other = std::move(file);
    EXPECT_EQ(other.number(), number);
    EXPECT_EQ(other.name(), "f");
    other.close();
    EXPECT_FALSE(other.isOpen());
    EXPECT_EQ(::fcntl(number, F_GETFD), -1);
}

TEST_F(ASystemFile, isAtAPathUntilAnotherTakesIt) {
    const SystemFile file = SystemFile::open(path_, O_RDWR | O_CREAT, "f");
    EXPECT_TRUE(file.isAt(path_));
    std::filesystem::rename(tree_.addFile("g"), path_);
    EXPECT_FALSE(file.isAt(path_));
    std::filesystem::remove(path_);
    EXPECT_FALSE(file.isAt(path_));
}

TEST_F(ASystemFile, isLockedByOneAtATime) {
    SystemFile file = SystemFile::open(path_, O_RDWR | O_CREAT, "f");
    SystemFile other = SystemFile::open(path_, O_RDWR, "f");
    EXPECT_TRUE(file.tryLock());
    EXPECT_FALSE(other.tryLock());
    file.close();
    EXPECT_TRUE(other.tryLock());
}

TEST_F(ASystemFile, takesTheRightsOfAnother) {
    const SystemFile other = SystemFile::open(tree_.addFile("other"), O_RDONLY, "other");
    tree_.allow("other", 0640);
    SystemFile file = SystemFile::open(path_, O_RDWR | O_CREAT, "f");
    file.takeRightsOf(other.status());
    EXPECT_EQ(file.status().st_mode & 07777, 0640U);
}

TEST_F(ASystemFile, isRegularOrRefused) {
    EXPECT_NO_THROW(requireRegularFile(SystemFile::open(path_, O_RDWR | O_CREAT, "f")));
    const Refusal device =
        refusalOf([] { requireRegularFile(SystemFile::open("/dev/null", O_RDONLY, "d")); });
    EXPECT_EQ(device.kind, ErrorKind::kNotASet);
    EXPECT_EQ(device.text, "d: is no regular file");
    EXPECT_EQ(
        refusalOf([&] { requireRegularFile(SystemFile::open(tree_.path(), O_RDONLY, "d")); }).text,
        "d: Is a directory");
}

TEST_F(ASystemFile, hasADirectoryThatIsPutOnTheDevice) {
    EXPECT_NO_THROW(syncDirectoryOf(path_, "f"));
    EXPECT_NO_THROW(syncDirectoryOf("f", "f"));
    EXPECT_EQ(refusalOf([&] { syncDirectoryOf(tree_.pathOf("none/f"), "f"); }).text,
              "f: No such file or directory");
}

TEST(DirectoryOf, isWhatStandsBeforeTheName) {
    EXPECT_EQ(directoryOf("a/b/c"), "a/b/");
    EXPECT_EQ(directoryOf("/c"), "/");
    EXPECT_EQ(directoryOf("c"), "");
    EXPECT_EQ(directoryOf("a/"), "a/");
}

TEST_F(ASystemFile, isFoundThroughSymbolicLinks) {
    tree_.addFile("f");
    tree_.addSymbolicLink("link", "f");
    EXPECT_EQ(withoutLinks(tree_.pathOf("link")), withoutLinks(path_));
    EXPECT_EQ(withoutLinks(tree_.pathOf("none")), tree_.pathOf("none"));
}

}  // namespace
}  // namespace zqpaths
