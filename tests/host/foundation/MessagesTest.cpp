#include "host/foundation/Messages.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace foundation::core::messages {
namespace {

std::string filled(std::string_view text, const std::vector<std::string>& arguments) {
    add("KORVEX:printer", "filled", text);
    return format("KORVEX:printer", "filled", arguments);
}

TEST(Messages, fillHolesWithArguments) {
    EXPECT_EQ(filled("tray {1} of {2} is empty", {"2", "desk"}), "tray 2 of desk is empty");
}

TEST(Messages, fillHolesInAnyOrderAndRepeatedly) {
    EXPECT_EQ(filled("{2}{1}{2}", {"a", "b"}), "bab");
}

TEST(Messages, fillHolesWithNumbersOfSeveralDigits) {
    EXPECT_EQ(filled("{11}{10}", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "ten", "eleven"}),
              "eleventen");
}

TEST(Messages, leaveAHoleWithoutArgumentAsItIs) {
    EXPECT_EQ(filled("{1} of {2}", {"one"}), "one of {2}");
    EXPECT_EQ(filled("{0}", {"one"}), "{0}");
    EXPECT_EQ(filled("{99999999999999999999999}", {"one"}), "{99999999999999999999999}");
}

TEST(Messages, takeBracesThatAreNoHolesAsText) {
    for (const char* text : {"{", "{1", "{}", "{x}", "{-1}", "{1 }", "{{", "}", "1}"})
        EXPECT_EQ(filled(text, {"one"}), text);
    EXPECT_EQ(filled("{{1}}", {"one"}), "{one}");
}

TEST(Messages, doNotFillHolesThatComeWithArguments) {
    EXPECT_EQ(filled("{1}, {2}", {"{2}", "b"}), "{2}, b");
}

TEST(Messages, ignoreArgumentsWithoutAHole) {
    EXPECT_EQ(filled("no paper", {"one", "two"}), "no paper");
    EXPECT_EQ(filled("", {"one"}), "");
}

TEST(Messages, areReplacedByTheLastTextAdded) {
    add("KORVEX:printer", "replaced", "first");
    add("KORVEX:printer", "replaced", "second");
    EXPECT_EQ(format("KORVEX:printer", "replaced", {}), "second");
}

TEST(Messages, areKeptByComponentAndKey) {
    add("KORVEX:printer", "paper", "one");
    add("KORVEX:copier", "paper", "two");
    add("KORVEX:printer", "toner", "three");
    EXPECT_EQ(format("KORVEX:printer", "paper", {}), "one");
    EXPECT_EQ(format("KORVEX:copier", "paper", {}), "two");
    EXPECT_EQ(format("KORVEX:printer", "toner", {}), "three");
}

TEST(Messages, nameIdentifierAndArgumentsWithoutAText) {
    EXPECT_EQ(format("KORVEX:printer", "neverAdded", {}), "KORVEX:printer:neverAdded");
    EXPECT_EQ(format("KORVEX:printer", "neverAdded", {"2", "desk"}),
              "KORVEX:printer:neverAdded: 2, desk");
}

TEST(Messages, areAddedAndReadByManyThreads) {
    add("KORVEX:printer", "contended", "one {1}");
    std::vector<std::jthread> threads;
    for (const char* text : {"one {1}", "two {1}"}) {
        threads.emplace_back([text] {
            for (int i = 0; i < 1000; ++i) {
                add("KORVEX:printer", "contended", text);
                add("KORVEX:printer", "contended" + std::to_string(i), text);
                EXPECT_THAT(format("KORVEX:printer", "contended", {"tray"}),
                            testing::AnyOf("one tray", "two tray"));
            }
        });
    }
}

}  // namespace
}  // namespace foundation::core::messages
