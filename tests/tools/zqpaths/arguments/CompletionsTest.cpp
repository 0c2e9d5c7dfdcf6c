#include "tools/zqpaths/arguments/Completions.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>

namespace zqpaths::program {
namespace {

using testing::HasSubstr;

/// A program whose verb has options with words, one with several of them.
ProgramTable tableOf(std::string& taken) {
    Option how = text("--how", "HOW", taken, "in which way");
    how.words = {"fast", "slow"};
    Option fields = text("-f,--fields", "FIELDS", taken, "which");
    fields.words = {"name", "path"};
    fields.isWordList = true;
    return {"program",
            "1",
            "a program",
            {{.name = "fold",
              .synopsis = "",
              .summary = "fold",
              .examples = {},
              .options = rows(std::move(how), std::move(fields)),
              .run = [] { return ExitStatus::kDone; }}}};
}

/// What bash offers for the last of these words.
std::string completedByBash(const std::string& words) {
    std::string taken;
    const std::string script = bashCompletion(tableOf(taken)) + "COMP_WORDS=(program " + words +
                               "); COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _program 2>/dev/null; "
                               "echo -n \"${COMPREPLY[*]}\"";
    std::string quoted;
    for (const char character : script)
        quoted += character == '\'' ? std::string("'\\''") : std::string(1, character);
    FILE* const output = popen(("bash -c '" + quoted + "'").c_str(), "r");
    std::array<char, 1000> text{};
    const std::size_t size = fread(text.data(), 1, text.size(), output);
    EXPECT_EQ(pclose(output), 0);
    return {text.data(), size};
}

TEST(Completions, ofBashKnowValues) {
    EXPECT_EQ(completedByBash("fold --how f"), "fast");
    EXPECT_EQ(completedByBash("fold --how = s"), "slow");
    EXPECT_EQ(completedByBash("fold --how ''"), "fast slow");
}

TEST(Completions, ofBashKnowListsOfValues) {
    EXPECT_EQ(completedByBash("fold -f p"), "path");
    EXPECT_EQ(completedByBash("fold --fields path,n"), "path,name");
    EXPECT_EQ(completedByBash("fold --fields path,name,"), "path,name,name path,name,path");
}

TEST(Completions, ofOtherShellsKnowValues) {
    std::string taken;
    const ProgramTable table = tableOf(taken);
    EXPECT_THAT(zshCompletion(table), HasSubstr(":HOW:(fast slow)'"));
    EXPECT_THAT(zshCompletion(table), HasSubstr(":FIELDS:_values -s , FIELDS name path'"));
    EXPECT_THAT(fishCompletion(table), HasSubstr(" -l how -x -a 'fast slow' "));
    EXPECT_THAT(fishCompletion(table), HasSubstr(" -x -a '(__fish_complete_list , "));
}

}  // namespace
}  // namespace zqpaths::program
