#include "zqpaths/cinterface/Failures.hpp"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>
#include <thread>

namespace zqpaths::cinterface {
namespace {

template <class Exception>
zqp_status statusOfThrown(const Exception& exception) {
    return statusOf("zqp_call", [&](const Call&) { throw exception; });
}

TEST(CFailures, haveAStatusForEachKindOfErrorAndItsText) {
    const struct {
        ErrorKind kind;
        zqp_status status;
    } rows[] = {
        {ErrorKind::kNotFound, ZQP_NOT_FOUND}, {ErrorKind::kExists, ZQP_EXISTS},
        {ErrorKind::kNotASet, ZQP_NOT_A_SET},  {ErrorKind::kDamaged, ZQP_DAMAGED},
        {ErrorKind::kHeld, ZQP_HELD},          {ErrorKind::kNoSpace, ZQP_NO_SPACE},
        {ErrorKind::kSystem, ZQP_SYSTEM},      {ErrorKind::kWrongUse, ZQP_WRONG_USE},
    };
    for (const auto& [kind, status] : rows) {
        const std::string reason = "reason " + std::to_string(status);
        EXPECT_EQ(statusOfThrown(Error(kind, "usr.zqp", reason)), status);
        EXPECT_EQ(zqp_last_error(), "usr.zqp: " + reason);
    }
}

TEST(CFailures, tellLackOfMemory) {
    EXPECT_EQ(statusOfThrown(std::bad_alloc()), ZQP_NO_MEMORY);
    EXPECT_STREQ(zqp_last_error(), "there is not enough memory");
}

TEST(CFailures, letNoOtherExceptionOut) {
    EXPECT_EQ(statusOfThrown(std::out_of_range("mine")), ZQP_UNEXPECTED);
    EXPECT_STREQ(zqp_last_error(), "mine");
    EXPECT_EQ(statusOfThrown(7), ZQP_UNEXPECTED);
    EXPECT_STREQ(zqp_last_error(), "something unexpected has happened");
}

TEST(CFailures, areTheStatusOfAStepThatGivesOne) {
    EXPECT_EQ(statusOf("zqp_call", [](const Call& call) { return call.failTooSmall(7, 1000); }),
              ZQP_TOO_SMALL);
    EXPECT_STREQ(zqp_last_error(), "zqp_call: the buffer has room for 7 bytes, 1000 are needed");
}

TEST(CFailures, stayUntilTheNext) {
    statusOfThrown(Error(ErrorKind::kHeld, "usr.zqp", "first"));
    const char* const text = zqp_last_error();
    EXPECT_EQ(statusOf("zqp_call", [](const Call&) {}), ZQP_OK);
    EXPECT_EQ(zqp_last_error(), text);
    EXPECT_STREQ(text, "usr.zqp: first");
    statusOfThrown(Error(ErrorKind::kHeld, "usr.zqp", "second"));
    EXPECT_STREQ(zqp_last_error(), "usr.zqp: second");
}

TEST(CFailures, keepTextsOfAnyLength) {
    const std::string name(100'000, 'x');
    statusOfThrown(Error(ErrorKind::kNotFound, name, "gone"));
    EXPECT_EQ(zqp_last_error(), name + ": gone");
}

TEST(CFailures, ofThreadsDoNotMix) {
    const auto failOften = [](const std::string& mine) {
        EXPECT_STREQ(zqp_last_error(), "");  // a new thread has not failed yet
        for (int i = 0; i < 1000; ++i) {
            statusOfThrown(Error(ErrorKind::kDamaged, mine, std::to_string(i)));
            EXPECT_EQ(zqp_last_error(), mine + ": " + std::to_string(i));
        }
    };
    statusOfThrown(Error(ErrorKind::kHeld, "here", "before"));
    std::thread one(failOften, "one");
    std::thread other(failOften, "other");
    one.join();
    other.join();
    EXPECT_STREQ(zqp_last_error(), "here: before");
}

}  // namespace
}  // namespace zqpaths::cinterface
