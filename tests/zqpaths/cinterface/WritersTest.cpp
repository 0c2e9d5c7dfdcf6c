// The functions for C that write sets.

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SavedPaths.hpp"
#include "tests/zqpaths/cinterface/OpenedByC.hpp"

namespace zqpaths {
namespace {

using Paths = std::vector<std::string>;

class CWriters : public testing::Test {
protected:
    static zqp_status add(const WriterOfC& writer, std::string_view path) {
        return zqp_writer_add(writer.get(), path.data(), path.size());
    }

    void write(const Paths& paths, unsigned how) const {
        const WriterOfC writer = writerOfC(file_, how);
        for (const std::string& path : paths) expectStatus(add(writer, path), ZQP_OK);
        expectStatus(zqp_writer_commit(writer.get()), ZQP_OK);
    }

    /// A writer is refused, and NULL.
    void expectRefusal(const char* file, unsigned how, zqp_status expected,
                       const std::string& text) const {
        auto* writer = reinterpret_cast<zqp_writer*>(const_cast<char*>(file_.data()));
        EXPECT_EQ(zqp_writer_open(file, how, &writer), expected);
        EXPECT_EQ(zqp_last_error(), text);
        EXPECT_EQ(writer, nullptr);
    }

    SegmentForm formOfLast() const { return SetFile::open(file_)->segments().back().form; }

    test_support::TemporaryTree tree_;
    std::string file_ = tree_.pathOf("s.zqp");
};

TEST_F(CWriters, makeASet) {
    const Paths paths{"/usr/bin/env", "caf\xC3\xA9\xFF", "a//b/", "caf\xC3\xA9\xFF"};
    write(paths, ZQP_CREATE);
    EXPECT_EQ(savedPaths(file_), paths);
    EXPECT_EQ(formOfLast(), SegmentForm::kImage);
}

TEST_F(CWriters, refuseToMakeAFileThatIsThere) {
    write({"a"}, ZQP_CREATE);
    expectRefusal(file_.c_str(), ZQP_CREATE, ZQP_EXISTS, file_ + ": is there already");
    expectRefusal(file_.c_str(), ZQP_CREATE | ZQP_PACKED, ZQP_EXISTS, file_ + ": is there already");
    EXPECT_EQ(savedPaths(file_), Paths{"a"});
}

TEST_F(CWriters, replaceASet) {
    write({"a"}, ZQP_REPLACE);
    write({"b"}, ZQP_REPLACE | ZQP_PACKED);
    EXPECT_EQ(savedPaths(file_), Paths{"b"});
    EXPECT_EQ(formOfLast(), SegmentForm::kPacked);
}

TEST_F(CWriters, appendToASet) {
    write({"a"}, ZQP_CREATE | ZQP_PACKED);
    const WriterOfC writer = writerOfC(file_, ZQP_APPEND);
    EXPECT_EQ(zqp_writer_size(writer.get()), 1U);
    expectStatus(add(writer, "b"), ZQP_OK);
    EXPECT_EQ(zqp_writer_size(writer.get()), 2U);
    EXPECT_EQ(savedPaths(file_), Paths{"a"});
    expectStatus(zqp_writer_commit(writer.get()), ZQP_OK);
    EXPECT_EQ(savedPaths(file_), (Paths{"a", "b"}));
}

TEST_F(CWriters, makeAnEmptySet) {
    write({}, ZQP_CREATE);
    EXPECT_EQ(savedPaths(file_), Paths());
    EXPECT_EQ(zqp_size(OpenedByC(file_).get()), 0U);
}

TEST_F(CWriters, discardWhatWasNotCommitted) {
    {
        const WriterOfC writer = writerOfC(file_, ZQP_CREATE);
        expectStatus(add(writer, "a"), ZQP_OK);
    }
    EXPECT_EQ(namesIn(tree_.path()), Texts());
    write({"a"}, ZQP_CREATE);
    const std::string before = contentOf(file_);
    for (const unsigned how : {ZQP_REPLACE, ZQP_APPEND})
        expectStatus(add(writerOfC(file_, how), "b"), ZQP_OK);
    EXPECT_EQ(contentOf(file_), before);
    EXPECT_EQ(namesIn(tree_.path()), Texts{"s.zqp"});
}

TEST_F(CWriters, goOnAfterAPathThatIsNone) {
    const WriterOfC writer = writerOfC(file_, ZQP_CREATE);
    EXPECT_EQ(zqp_writer_add(writer.get(), nullptr, 0), ZQP_WRONG_USE);
    EXPECT_EQ(zqp_last_error(), file_ + ": an empty path");
    EXPECT_EQ(add(writer, std::string_view("a\0b", 3)), ZQP_WRONG_USE);
    EXPECT_EQ(zqp_last_error(), file_ + ": a path with NUL at byte 1");
    expectStatus(add(writer, "a"), ZQP_OK);
    expectStatus(zqp_writer_commit(writer.get()), ZQP_OK);
    EXPECT_EQ(savedPaths(file_), Paths{"a"});
}

TEST_F(CWriters, takeNothingAfterACommit) {
    const WriterOfC writer = writerOfC(file_, ZQP_CREATE);
    expectStatus(add(writer, "a"), ZQP_OK);
    expectStatus(zqp_writer_commit(writer.get()), ZQP_OK);
    EXPECT_EQ(add(writer, "b"), ZQP_WRONG_USE);
    EXPECT_EQ(zqp_writer_commit(writer.get()), ZQP_WRONG_USE);
    EXPECT_EQ(zqp_writer_size(writer.get()), 1U);
    EXPECT_EQ(savedPaths(file_), Paths{"a"});
}

TEST_F(CWriters, tellThatAnotherHasMadeTheFileMeanwhile) {
    const WriterOfC writer = writerOfC(file_, ZQP_CREATE);
    writeContent(file_, "another's");
    EXPECT_EQ(zqp_writer_commit(writer.get()), ZQP_EXISTS);
    EXPECT_EQ(zqp_last_error(), file_ + ": is there already");
    EXPECT_EQ(contentOf(file_), "another's");
    EXPECT_EQ(add(writer, "a"), ZQP_EXISTS) << "the writer takes no more";
}

TEST_F(CWriters, refuseFilesThatTheyCannotWriteTo) {
    const std::string none = tree_.pathOf("none.zqp");
    expectRefusal(none.c_str(), ZQP_APPEND, ZQP_NOT_FOUND, none + ": No such file or directory");
    const std::string text = tree_.addFile("text", std::string(10'000, 'x'));
    expectRefusal(text.c_str(), ZQP_APPEND, ZQP_NOT_A_SET, text + ": is no saved set");
}

TEST_F(CWriters, refuseWaysToWriteThatThereAreNot) {
    for (const unsigned how : {3U, 4U, 32U, 3U + ZQP_PACKED, std::numeric_limits<unsigned>::max()})
        expectRefusal(file_.c_str(), how, ZQP_WRONG_USE,
                      "zqp_writer_open: there is no way to write numbered " + std::to_string(how));
    EXPECT_EQ(namesIn(tree_.path()), Texts());
}

TEST_F(CWriters, refuseNull) {
    expectRefusal(nullptr, ZQP_CREATE, ZQP_WRONG_USE, "zqp_writer_open: file is NULL");
    const auto expectNull = [](zqp_status status, const std::string& text) {
        EXPECT_EQ(status, ZQP_WRONG_USE);
        EXPECT_EQ(zqp_last_error(), text + " is NULL");
    };
    expectNull(zqp_writer_open(file_.c_str(), ZQP_CREATE, nullptr), "zqp_writer_open: writer");
    expectNull(zqp_writer_add(nullptr, "a", 1), "zqp_writer_add: writer");
    expectNull(zqp_writer_commit(nullptr), "zqp_writer_commit: writer");
    EXPECT_EQ(zqp_writer_size(nullptr), 0U);
    zqp_writer_close(nullptr);
    const WriterOfC writer = writerOfC(file_, ZQP_CREATE);
    expectNull(zqp_writer_add(writer.get(), nullptr, 1), "zqp_writer_add: path");
    EXPECT_EQ(zqp_writer_size(writer.get()), 0U);
}

}  // namespace
}  // namespace zqpaths
