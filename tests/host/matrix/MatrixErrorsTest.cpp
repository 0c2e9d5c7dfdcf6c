#include "host/matrix/MatrixErrors.hpp"

#include <gtest/gtest.h>

#include <limits>

#include "tests/host/Refusals.hpp"

namespace matrix::detail {
namespace {

using foundation::core::except::Exception;

TEST(MatrixErrors, forWrongNumbersOfInputsAndOutputsAreTyped) {
    EXPECT_EQ(refusal<KORVEX::matrix::tooManyOutputs>([] { error_maxlhs(); }), Arguments{});
    EXPECT_EQ(refusal<KORVEX::matrix::tooManyInputs>([] { error_maxrhs(); }), Arguments{});
    EXPECT_EQ(refusal<KORVEX::matrix::notEnoughInputs>([] { error_minrhs(); }), Arguments{});
}

TEST(MatrixErrors, haveNumbers) {
    EXPECT_EQ(refusal<KORVEX::matrix::tooManyOutputs>([] { error_message(0); }), Arguments{});
    EXPECT_EQ(refusal<KORVEX::matrix::tooManyInputs>([] { error_message(1); }), Arguments{});
    EXPECT_EQ(refusal<KORVEX::matrix::notEnoughInputs>([] { error_message(2); }), Arguments{});
    EXPECT_EQ(refusal<KORVEX::matrix::invalidOutputCount>([] { error_message(3); }), Arguments{});
}

TEST(MatrixErrors, ofOtherNumbersAreUnknownMessages) {
    for (const int number :
         {-1, 4, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        EXPECT_EQ(refusal<KORVEX::matrix::unknownMessage>([&] { error_message(number); }),
                  (Arguments{std::to_string(number)}));
    }
}

TEST(MatrixErrors, areReportedAsTheTypeThatTheyAre) {
    const auto report = [] { do_legacy_kx_error(Exception<KORVEX::matrix::unknownMessage>("7")); };
    EXPECT_EQ(refusal<KORVEX::matrix::unknownMessage>(report), (Arguments{"7"}));
}

}  // namespace
}  // namespace matrix::detail
