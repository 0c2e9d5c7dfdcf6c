#include "host/foundation/Exceptions.hpp"

#include <gtest/gtest.h>

#include <type_traits>

#include "tests/host/Refusals.hpp"

namespace printer {

struct outOfPaper {
    static constexpr const char* kComponent = "KORVEX:printer";
    static constexpr const char* kKey = "outOfPaper";
};
struct noText {
    static constexpr const char* kComponent = "KORVEX:printer";
    static constexpr const char* kKey = "noText";
};
struct PrinterError : std::exception {};

}  // namespace printer

namespace foundation::core::except {
namespace {

class Exceptions : public testing::Test {
protected:
    void SetUp() override {
        messages::add("KORVEX:printer", "outOfPaper", "tray {1} of {2} is empty");
    }
};

TEST_F(Exceptions, knowIdentifierArgumentsAndText) {
    const Exception<printer::outOfPaper> error("2", std::string("desk"));
    EXPECT_EQ(error.identifier(), "KORVEX:printer:outOfPaper");
    EXPECT_EQ(error.arguments(), (Arguments{"2", "desk"}));
    EXPECT_STREQ(error.text(), "tray 2 of desk is empty");
    EXPECT_STREQ(error.what(), "tray 2 of desk is empty");
}

TEST_F(Exceptions, keepTheTextThatTheyWereMadeWith) {
    const Exception<printer::outOfPaper> error("2", "desk");
    messages::add("KORVEX:printer", "outOfPaper", "changed");
    EXPECT_STREQ(error.what(), "tray 2 of desk is empty");
}

TEST_F(Exceptions, sayWhoTheyAreWithoutAText) {
    EXPECT_STREQ(Exception<printer::noText>("x").what(), "KORVEX:printer:noText: x");
}

TEST_F(Exceptions, takeArgumentsWithNulCharacters) {
    const std::string name("a\0b", 3);
    const Exception<printer::outOfPaper> error(name, "");
    EXPECT_EQ(error.arguments(), (Arguments{name, ""}));
}

TEST_F(Exceptions, areCaughtAsStandardExceptionsAndAsHostErrors) {
    EXPECT_THROW(throw Exception<printer::outOfPaper>("2", "desk"), std::exception);
    EXPECT_THROW(throw Exception<printer::outOfPaper>("2", "desk"), HostError);
}

TEST_F(Exceptions, ofDifferentKindsAreDifferentTypes) {
    try {
        throw Exception<printer::outOfPaper>("2", "desk");
    } catch (const Exception<printer::noText>&) {
        FAIL() << "caught as another kind";
    } catch (const HostError& error) {
        EXPECT_EQ(error.identifier(), "KORVEX:printer:outOfPaper");
    }
}

TEST_F(Exceptions, canHaveABaseOfTheirOwn) {
    using Error = Exception<printer::outOfPaper, printer::PrinterError>;
    static_assert(std::is_base_of_v<printer::PrinterError, Error>);
    EXPECT_THROW(throw Error("2", "desk"), printer::PrinterError);
}

TEST_F(Exceptions, areRaisedAgainAsTheTypeThatTheyAre) {
    const Exception<printer::outOfPaper> original("2", "desk");
    const HostError& error = original;
    EXPECT_EQ(refusal<printer::outOfPaper>([&] { error.raise(); }), (Arguments{"2", "desk"}));
}

TEST_F(Exceptions, forWantOfMemoryAreThoseOfTheLanguage) {
    try {
        throw bad_alloc();
    } catch (const std::bad_alloc& error) {
        EXPECT_STREQ(error.what(), "out of memory");
    }
}

}  // namespace
}  // namespace foundation::core::except
