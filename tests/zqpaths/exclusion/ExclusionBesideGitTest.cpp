// Exclusion rules beside git, which is asked about every path of a tree for made-up patterns.

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/ProgramRun.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/exclusion/ExcludedPaths.hpp"

namespace zqpaths {
namespace {

using test_support::ProgramRun;
using test_support::runProgram;
using test_support::TemporaryTree;

constexpr int kRounds = 250;
constexpr int kPatternsARound = 4;

class PatternMaker {
public:
    explicit PatternMaker(unsigned seed) : chance_(seed) {}

    std::string file() {
        std::string text;
        for (int i = 0; i < kPatternsARound; ++i) text += pattern() + '\n';
        return text;
    }

private:
    std::string pattern() {
        std::string text = oneIn(4) ? "!" : "";
        if (oneIn(3)) text += '/';
        const unsigned names = 1 + below(3);
        for (unsigned i = 0; i < names; ++i) text += (i == 0 ? "" : "/") + name();
        if (oneIn(4)) text += '/';
        if (oneIn(6)) text += "  ";
        return text;
    }

    /// Stars beside other characters come one at a time: of more than one after plain letters git
    /// takes those for directories that its manual page calls regular stars.
    std::string name() {
        if (oneIn(5)) return "**";
        std::string text;
        const unsigned parts = 1 + below(3);
        for (unsigned i = 0; i < parts; ++i) {
            std::string next = part();
            if (next == "*" && text.ends_with('*')) next = "?";
            text += next;
        }
        return text;
    }

    std::string part() {
        static const std::vector<std::string> kParts{
            "a",    "b",          "c",        ".",       "*",    "*",     "?",     "[ab]",
            "[!a]", "[b-c]",      "[^.]",     "\\a",     "\\*",  "[a",    "[]",    "[[:alpha:]]",
            "#",    "[[:punct:]", "[*\\]]",   "[b-\\c]", "a\\ ", "[a-]",  "\\",    "ab",
            "[[:x", "[[:bad:]]",  "\xC3\xA9", "[\xC3]",  " ",    "[!-~]", "[]-a]", "[--.]"};
        return kParts[below(static_cast<unsigned>(kParts.size()))];
    }

    unsigned below(unsigned bound) { return static_cast<unsigned>(chance_() % bound); }
    bool oneIn(unsigned count) { return below(count) == 0; }

    std::mt19937 chance_;
};

/// Files and directories, three levels of them; directories end with a separator.
std::vector<std::string> addEntries(const TemporaryTree& tree) {
    const std::vector<std::string> names{"a", "b", "ab", "a.c", "*", "\xC3\xA9", "#", "a b"};
    std::vector<std::string> entries;
    for (const std::string& first : names) {
        if (first == "a.c" || first == "#") {
            tree.addFile(first);
            entries.push_back(first);
            continue;
        }
        for (const std::string& second : names) entries.push_back(first + '/' + second);
        for (const std::string third : {"a", "b.c"}) entries.push_back(first + "/c/" + third);
        entries.push_back(first + "/c/");
        entries.push_back(first + '/');
    }
    for (const std::string& entry : entries)
        if (!entry.ends_with('/')) tree.addFile(entry);
    return entries;
}

/// git looks up which paths are directories.
std::string withoutSeparator(const std::string& entry) {
    return entry.ends_with('/') ? entry.substr(0, entry.size() - 1) : entry;
}

std::string list(const std::vector<std::string>& entries) {
    std::string text;
    for (const std::string& entry : entries) text += withoutSeparator(entry) + '\0';
    return text;
}

class Repository {
public:
    Repository() : entries_(addEntries(tree_)) {
        const ProgramRun made = runProgram({"git", "init", "--quiet", tree_.path()});
        EXPECT_EQ(made.exitStatus, 0) << made.errors;
        list_ = lists_.addFile("list", list(entries_));
    }

    const std::vector<std::string>& entries() const { return entries_; }

    std::string ignoredByGit(const std::string& patterns) const {
        tree_.addFile(".gitignore", patterns);
        const ProgramRun asked = runProgram(
            {"sh", "-c",
             "GIT_CONFIG_GLOBAL=/dev/null git -C \"$0\" check-ignore --no-index -z --stdin <\"$1\"",
             tree_.path(), list_});
        EXPECT_LE(asked.exitStatus, 1) << asked.errors;
        return asked.output;
    }

private:
    TemporaryTree tree_;
    TemporaryTree lists_;
    std::vector<std::string> entries_;
    std::string list_;
};

TEST(ExclusionRules, areThoseOfGit) {
    const Repository repository;
    PatternMaker maker(1);
    std::size_t ignoredCount = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string patterns = maker.file();
        ExcludedPaths excluded(exclusionPatterns(patterns));
        std::vector<std::string> ignored;
        for (const std::string& entry : repository.entries())
            if (excluded.contain(entry)) ignored.push_back(entry);
        ignoredCount += ignored.size();
        ASSERT_EQ(list(ignored), repository.ignoredByGit(patterns)) << patterns;
    }
    // Neither all nor nothing.
    EXPECT_GT(ignoredCount, repository.entries().size() * kRounds / 10);
    EXPECT_LT(ignoredCount, repository.entries().size() * kRounds * 9 / 10);
}

}  // namespace
}  // namespace zqpaths
