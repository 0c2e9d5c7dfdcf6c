#include "zqpaths/Error.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace zqpaths {
namespace {

TEST(Error, putsThePlaceBeforeTheReason) {
    const Error error(ErrorKind::kDamaged, "usr.zqp", "the header is damaged");
    EXPECT_EQ(error.kind(), ErrorKind::kDamaged);
    EXPECT_STREQ(error.what(), "usr.zqp: the header is damaged");
}

TEST(Error, isTheReasonAloneWithoutAPlace) {
    EXPECT_STREQ(Error(ErrorKind::kWrongUse, {}, "the path is empty").what(), "the path is empty");
}

TEST(Error, keepsTheBytesOfAName) {
    EXPECT_STREQ(Error(ErrorKind::kExists, "\xFF\n", kIsThere).what(), "\xFF\n: is there already");
}

TEST(SystemError, hasTheKindAndTheWordsOfTheSystem) {
    const struct {
        int error;
        ErrorKind kind;
        const char* text;
    } rows[] = {
        {ENOENT, ErrorKind::kNotFound, "f: No such file or directory"},
        {ENOTDIR, ErrorKind::kNotFound, "f: Not a directory"},
        {EEXIST, ErrorKind::kExists, "f: File exists"},
        {EISDIR, ErrorKind::kNotASet, "f: Is a directory"},
        {ENOSPC, ErrorKind::kNoSpace, "f: there is no space left on the device"},
        {EDQUOT, ErrorKind::kNoSpace, "f: there is no space left on the device"},
        {EACCES, ErrorKind::kSystem, "f: Permission denied"},
        {EFBIG, ErrorKind::kSystem, "f: File too large"},
    };
    for (const auto& row : rows) {
        const Error error = systemError("f", row.error);
        EXPECT_EQ(error.kind(), row.kind) << row.text;
        EXPECT_STREQ(error.what(), row.text);
        EXPECT_EQ(error.systemCode(), row.error);
    }
}

TEST(Error, hasNoCodeOfTheSystemThatWasNotAsked) {
    EXPECT_EQ(Error(ErrorKind::kDamaged, "usr.zqp", "the header is damaged").systemCode(), 0);
}

}  // namespace
}  // namespace zqpaths
