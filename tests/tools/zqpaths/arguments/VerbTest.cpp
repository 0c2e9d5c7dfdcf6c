#include "tools/zqpaths/arguments/Verb.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/Arguments.hpp"

namespace zqpaths::program {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// What one verb with all kinds of options is told.
struct Told {
    std::string set;
    std::vector<std::string> more;
    bool isLoud = false;
    std::optional<std::string> text;
    std::optional<std::uint64_t> count;
    bool isRun = false;
};

ProgramTable tableOf(Told& told) {
    Verb verb{
        .name = "tell",
        .synopsis = "SET MORE...",
        .summary = "take everything",
        .examples = {"program tell x y"},
        .options = rows(argument("SET", told.set, "one"), arguments("MORE", told.more, "others"),
                        rows(flag("-l,--loud", told.isLoud, "a switch"),
                             excluding("--loud", text("--text", "T", told.text, "a text"))),
                        number("-n,--count", "N", told.count, "a number")),
        .run = [&told] {
            told.isRun = true;
            return ExitStatus::kNegative;
        }};
    return {"program", "1", "a program", {std::move(verb)}};
}

Told tell(std::vector<const char*> arguments) {
    Told told;
    arguments.insert(arguments.begin(), {"program", "tell"});
    const auto run =
        parseArguments(tableOf(told), static_cast<int>(arguments.size()), arguments.data());
    EXPECT_FALSE(told.isRun);
    EXPECT_EQ(run(), ExitStatus::kNegative);
    EXPECT_TRUE(told.isRun);
    return told;
}

std::string complaint(const std::vector<const char*>& arguments) {
    try {
        tell(arguments);
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.status(), ExitStatus::kFailed);
        return failure.what();
    }
    return "none";
}

TEST(Verb, takesArgumentsAndOptions) {
    const Told told = tell({"a", "b", "-n", "7", "c", "--loud"});
    EXPECT_EQ(told.set, "a");
    EXPECT_THAT(told.more, ElementsAre("b", "c"));
    EXPECT_EQ(told.count, 7U);
    EXPECT_TRUE(told.isLoud);
    EXPECT_FALSE(told.text);
}

TEST(Verb, takesNamesOfAnyForm) {
    const Told told = tell({"--text", "[a,b]", "[x,y]", "--", "--loud", "[]", "\1x", "-n"});
    EXPECT_EQ(told.set, "[x,y]");
    EXPECT_THAT(told.more, ElementsAre("--loud", "[]", "\1x", "-n"));
    EXPECT_EQ(told.text, "[a,b]");
    EXPECT_FALSE(told.isLoud);
}

TEST(Verb, takesNumbersInDecimalDigitsAlone) {
    EXPECT_EQ(tell({"a", "b", "-n", "010"}).count, 10U);
    EXPECT_EQ(tell({"a", "b", "-n", "18446744073709551615"}).count, UINT64_MAX);
    for (const char* number : {"18446744073709551616", "0x1", "1.5", "+1", "1 "})
        EXPECT_THAT(complaint({"a", "b", "-n", number}), HasSubstr("is no whole number"));
}

TEST(Verb, refusesWhatDoesNotGoTogether) {
    EXPECT_THAT(complaint({"a", "b", "--loud", "--text", "t"}), HasSubstr("excludes"));
    EXPECT_THAT(complaint({"a"}), HasSubstr("MORE"));
    EXPECT_THAT(complaint({"a", "b", "--quiet"}), HasSubstr("--quiet"));
    EXPECT_THAT(complaint({"a", "b", "-n"}), HasSubstr("-n lacks its N"));
}

TEST(Verb, hasOptionsWhoseNamesStandApart) {
    bool isOn = false;
    EXPECT_THAT(flag("-l,--loud", isOn, "").namesApart(), ElementsAre("-l", "--loud"));
    EXPECT_THAT(flag("--loud", isOn, "").namesApart(), ElementsAre("--loud"));
}

}  // namespace
}  // namespace zqpaths::program
