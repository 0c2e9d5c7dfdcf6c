#include "tools/zqpaths/arguments/GivenOptions.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

/// A verb with an option of each kind, and what it was told.
class GivenOptions : public testing::Test {
protected:
    GivenOptions() {
        Option out = argument("OUT", out_, "another");
        out.isRequired = false;
        Option how = text("--how", "HOW", how_, "in which way");
        how.words = {"fast", "slow"};
        Option fields = text("--fields", "FIELDS", fields_, "which");
        fields.words = {"name", "path"};
        fields.isWordList = true;
        Option not0 = text("--not", "GLOB", glob_, "what not");
        not0.isRepeated = true;
        not0.take = [this](const std::string& text) { globs_.push_back(text); };
        Option folded = flag("--folded", isFolded_, "in a smaller form");
        folded.needed = "--how";
        verb_ = {.name = "fold",
                 .synopsis = "SET [OUT]",
                 .summary = "fold a set",
                 .examples = {},
                 .options = rows(argument("SET", set_, "a set"), std::move(out),
                                 flag("-i,--ignore-case", ignoreCase_, "any case"),
                                 flag("-c,--count", isCount_, "the count"),
                                 number("-n,--number", "N", number_, "how many"), std::move(how),
                                 std::move(not0), std::move(folded), std::move(fields)),
                 .run = [] { return ExitStatus::kDone; }};
    }

    bool give(const std::vector<std::string>& arguments) {
        return takeOptions({"program", "1", "a program", {}}, verb_, arguments);
    }

    std::string complaint(const std::vector<std::string>& arguments) {
        try {
            give(arguments);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.status(), ExitStatus::kFailed);
            return failure.what();
        }
        return "none";
    }

    std::string set_;
    std::string out_;
    bool ignoreCase_ = false;
    bool isCount_ = false;
    bool isFolded_ = false;
    std::uint64_t number_ = 0;
    std::string how_;
    std::string glob_;
    std::string fields_;
    std::vector<std::string> globs_;
    Verb verb_;
};

TEST_F(GivenOptions, areTakenWhereverTheyStand) {
    EXPECT_TRUE(give({"-i", "s", "--number=3", "o", "--how", "slow"}));
    EXPECT_TRUE(ignoreCase_);
    EXPECT_EQ(set_, "s");
    EXPECT_EQ(out_, "o");
    EXPECT_EQ(number_, 3U);
    EXPECT_EQ(how_, "slow");
}

TEST_F(GivenOptions, standInOnePieceIfTheyAreShort) {
    EXPECT_TRUE(give({"-icn7", "s"}));
    EXPECT_TRUE(ignoreCase_);
    EXPECT_TRUE(isCount_);
    EXPECT_EQ(number_, 7U);
    EXPECT_TRUE(give({"-in", "8", "s"}));
    EXPECT_EQ(number_, 8U);
}

TEST_F(GivenOptions, haveValuesOfAnyForm) {
    EXPECT_TRUE(
        give({"s", "--not=", "--not=[a,b]", "--not", "--count", "--not=a=b", "--not", "-"}));
    EXPECT_THAT(globs_, ElementsAre("", "[a,b]", "--count", "a=b", "-"));
    EXPECT_FALSE(isCount_);
}

TEST_F(GivenOptions, areNoneAfterTwoDashes) {
    EXPECT_TRUE(give({"--", "--count", "--"}));
    EXPECT_EQ(set_, "--count");
    EXPECT_EQ(out_, "--");
    EXPECT_FALSE(isCount_);
}

TEST_F(GivenOptions, areNotNumbersThatCountFromAnEnd) {
    EXPECT_TRUE(give({"-5", "-5:"}));
    EXPECT_EQ(set_, "-5");
    EXPECT_EQ(out_, "-5:");
    EXPECT_TRUE(give({"-", ""}));
    EXPECT_EQ(set_, "-");
    EXPECT_EQ(out_, "");
}

TEST_F(GivenOptions, mayAskForHelpInstead) {
    EXPECT_FALSE(give({"--help"}));
    EXPECT_FALSE(give({"s", "-ch", "--number", "x"}));
    EXPECT_FALSE(give({"--count=yes", "--xyz", "-h", "--number"}));
    EXPECT_THAT(set_, IsEmpty());
    EXPECT_FALSE(isCount_);
}

TEST_F(GivenOptions, thatThereAreNotAreToldWithTheNearest) {
    EXPECT_THAT(complaint({"s", "--igore-case"}),
                StartsWith("fold has no option --igore-case; the nearest is --ignore-case\n"
                           "Usage: program fold [OPTIONS] SET [OUT]\n"));
    EXPECT_THAT(complaint({"s", "--hlep"}), HasSubstr("; the nearest is --help\n"));
    EXPECT_THAT(complaint({"s", "--xyz=7"}), StartsWith("fold has no option --xyz\n"));
    EXPECT_THAT(complaint({"s", "-cx"}), StartsWith("fold has no option -x\n"));
    EXPECT_THAT(complaint({"s", "--x\x1b[2J"}), StartsWith("fold has no option --x\\x1B[2J\n"));
}

TEST_F(GivenOptions, areToldInTheOrderGivenIfTheyAreTooMany) {
    EXPECT_THAT(complaint({"s", "o", "a", "[b]", "--", "-c", "\x1b"}),
                StartsWith("fold: the following arguments were not expected: a [b] -c \\x1B\n"));
}

TEST_F(GivenOptions, areToldIfTheyAreMissing) {
    EXPECT_THAT(complaint({}), StartsWith("fold: SET is missing\nUsage: program fold "));
    verb_.options.push_back(required(number("-k", "K", number_, "another")));
    EXPECT_THAT(complaint({}), StartsWith("fold: SET and -k K are missing\n"));
}

TEST_F(GivenOptions, areRefusedWithoutTheirValue) {
    EXPECT_THAT(complaint({"s", "--how"}), StartsWith("fold: --how lacks its HOW\n"));
    EXPECT_THAT(complaint({"s", "-cn"}), StartsWith("fold: -n lacks its N\n"));
    EXPECT_THAT(complaint({"s", "--count=yes"}), StartsWith("fold: --count takes no value\n"));
}

TEST_F(GivenOptions, areRefusedWithValuesThatTheyCannotHave) {
    EXPECT_THAT(complaint({"s", "--how", "fsat"}),
                StartsWith("fold: --how is fast or slow, not 'fsat'; the nearest is 'fast'\n"));
    EXPECT_THAT(complaint({"s", "--how="}), StartsWith("fold: --how is fast or slow, not ''\n"));
    EXPECT_THAT(complaint({"s", "--fields", "path,nmae"}),
                StartsWith("fold: --fields is a list of name and path, not 'path,nmae'\n"));
    EXPECT_THAT(complaint({"s", "--fields", "path,"}), HasSubstr(" is a list of "));
    EXPECT_TRUE(give({"s", "--fields", "path,name,path"}));
    EXPECT_EQ(fields_, "path,name,path");
    EXPECT_THAT(complaint({"s", "--number", "\x1b"}),
                StartsWith("-n,--number: \\x1B is no whole number"));
}

TEST_F(GivenOptions, areRefusedIfTheyDoNotGoTogether) {
    EXPECT_THAT(complaint({"s", "--folded"}), StartsWith("fold: --folded needs --how\n"));
    EXPECT_THAT(complaint({"s", "-n1", "--number", "2"}),
                StartsWith("fold: --number is given twice\n"));
    EXPECT_TRUE(give({"s", "-c", "-c"}));
}

}  // namespace
}  // namespace zqpaths::program
