#include "host/runtime/Error.hpp"

#include <gtest/gtest.h>

#include "host/foundation/Exceptions.hpp"
#include "tests/host/runtime/CountersTest.hpp"

namespace korvex {
namespace {

/// What a host program gets when a method throws.
class ErrorTest : public CountersTest {
protected:
    Failure failureOfKind(std::u16string_view kind) {
        Object counter = makeCounter();
        return failureOf([&] { counter.call("fail", 1, text(kind)); });
    }
};

TEST_F(ErrorTest, hasIdentifierAndTextOfAnErrorOfTheLibrary) {
    EXPECT_EQ(failureOfKind(u"host"),
              (Failure{"KORVEX:tests:negativeTotal", "a total cannot be -5"}));
}

TEST_F(ErrorTest, hasIdentifierOfAnErrorOfTheHostWithinTheLibrary) {
    EXPECT_EQ(failureOfKind(u"host array").identifier, "KORVEX:arrays:indexOutOfRange");
}

TEST_F(ErrorTest, hasTheTextOfAnyOtherException) {
    EXPECT_EQ(failureOfKind(u"standard"),
              (Failure{"KORVEX:runtime:nativeException", "Too far out."}));
}

TEST_F(ErrorTest, hasTheTextOfMissingMemory) {
    EXPECT_EQ(failureOfKind(u"memory"), (Failure{"KORVEX:runtime:nativeException",
                                                 foundation::core::except::bad_alloc().what()}));
}

TEST_F(ErrorTest, comesThroughAsItIs) {
    EXPECT_EQ(failureOfKind(u"error"), (Failure{"KORVEX:tests:own", "An error as it is."}));
}

TEST_F(ErrorTest, hasAFixedTextForWhatIsNoException) {
    EXPECT_EQ(failureOfKind(u"number"),
              (Failure{"KORVEX:runtime:nativeException",
                       "The library threw something that is not an exception."}));
}

TEST_F(ErrorTest, isAStandardException) {
    const Error error("KORVEX:tests:own", "Some text.");
    const std::exception& base = error;
    EXPECT_STREQ(base.what(), "Some text.");
    EXPECT_EQ(error.identifier(), "KORVEX:tests:own");
}

}  // namespace
}  // namespace korvex
