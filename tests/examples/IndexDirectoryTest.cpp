// Runs the example as a person does, on small inputs of each kind.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/ProgramRun.hpp"
#include "tests/support/TemporaryTree.hpp"

namespace {

using test_support::ProgramRun;
using test_support::runProgram;
using test_support::TemporaryTree;
using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

ProgramRun indexDirectory(const std::string& source) {
    return runProgram({ZQ_INDEX_DIRECTORY, source});
}

/// The run on a list with this content.
ProgramRun indexList(std::string_view content) {
    const TemporaryTree tree;
    return indexDirectory(tree.addFile("list", content));
}

void expectAllEqual(const ProgramRun& run, std::string_view pathCount) {
    EXPECT_EQ(run.exitStatus, 0);
    EXPECT_THAT(run.output, HasSubstr(std::string("all ").append(pathCount) + " paths are equal"));
    EXPECT_THAT(run.errors, IsEmpty());
}

void expectRefused(const ProgramRun& run, const std::string& message) {
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_THAT(run.output, IsEmpty());
    EXPECT_EQ(run.errors, message + '\n');
}

TEST(IndexDirectory, givesBackAllPathsOfADirectory) {
    const TemporaryTree tree;
    for (const char* name : {"x", "a/x", "a/y", "a/b/z"}) tree.addFile(name);
    const ProgramRun run = indexDirectory(tree.path());
    expectAllEqual(run, "4");
    EXPECT_THAT(run.output, ContainsRegex("paths +4\n"));
    EXPECT_THAT(run.output, ContainsRegex("folders +3 in 3 entries"));
    EXPECT_THAT(run.output, HasSubstr("4  " + tree.pathOf("a/b/z") + '\n'));
}

TEST(IndexDirectory, saysHowLongEachPhaseTookAndHowLargeTheSetIs) {
    const ProgramRun run = indexList("a/b\na/c\n");
    for (const char* phase : {"list", "count characters", "add", "fetch all by number", "walk",
                              "save", "load", "compare what was loaded"})
        EXPECT_THAT(run.output, ContainsRegex(std::string(phase) + " +[0-9]+\\.[0-9]+ s\n"));
    EXPECT_THAT(run.output, ContainsRegex("text +6 bytes, 3.0 a path"));
    EXPECT_THAT(run.output, ContainsRegex("distinct characters +4"));
    EXPECT_THAT(run.output, ContainsRegex("code +2.00 bits a character"));  // a, b, c, separator
    EXPECT_THAT(run.output, ContainsRegex("heap after adding +[0-9,]+ bytes, [0-9,.]+ a path"));
    EXPECT_THAT(run.output, ContainsRegex("saved +[0-9,]+ bytes, [0-9,.]+ a path"));
    EXPECT_THAT(run.output, ContainsRegex("single random access +[0-9,]+ ns"));
}

TEST(IndexDirectory, givesBackNamesOfAnyBytes) {
    const std::vector<std::string> names{
        "-rf",
        "new\nline",
        "cut \xE2\x82",
        "\xF0\x9F\x98\x80",
        "\xF0\x9F\x98\x80\x80",
        "back\\slash",
        "\x01\x7F",
        std::string(255, 'n'),
    };
    const TemporaryTree tree;
    for (const std::string& folder : names)
        for (const std::string& name : names) tree.addFile(std::string(folder).append("/") += name);
    expectAllEqual(indexDirectory(tree.path()), "64");
}

TEST(IndexDirectory, writesOddNamesSoThatTheyCannotBeMistaken) {
    EXPECT_THAT(indexList("d/a\x1B[2J\\\xFF\xF0\x9F\x98\x80\xC2\x9B\n").output,
                HasSubstr("1  d/a\\x1B[2J\\\\\\xFF\xF0\x9F\x98\x80\\xC2\\x9B\n"));
    EXPECT_THAT(
        indexList("d/" + std::string(1000, 'x') + '\n').output,
        AllOf(HasSubstr("xxx ... 842 characters ... xxx"), Not(HasSubstr(std::string(200, 'x')))));
}

TEST(IndexDirectory, givesBackPathsThreeThousandLevelsDeep) {
    const TemporaryTree tree;
    tree.addDeepLevels(3000, "d", "e");
    expectAllEqual(indexDirectory(tree.path()), "3,001");
}

TEST(IndexDirectory, takesAListWithAndWithoutFinalNewline) {
    expectAllEqual(indexList("a/b\nc\n"), "2");
    expectAllEqual(indexList("a/b\nc"), "2");
}

TEST(IndexDirectory, keepsCarriageReturnsAsPartOfTheName) {
    const ProgramRun run = indexList("a/b\r\na/c\r\n");
    expectAllEqual(run, "2");
    EXPECT_THAT(run.output, HasSubstr("1  a/b\\x0D\n"));
}

TEST(IndexDirectory, takesAListWithASingleCharacter) {
    for (const char* list : {"a\n", "aaa\n", "/\n", "///\n", "\xFF\n"})
        expectAllEqual(indexList(list), "1");
    expectAllEqual(indexList("a\naa\n"), "2");
}

TEST(IndexDirectory, takesSeparatorsInAnyNumberAndPlace) {
    expectAllEqual(indexList("/\n//\n/a\n//a\na/\na//\na//b\na/b/\na/b//c/d\na/b/c//\n"), "10");
}

TEST(IndexDirectory, givesBackEqualPathsAsOftenAsTheyAreListed) {
    expectAllEqual(indexList("a/b\na/b\nc\na/b\nc\n"), "5");
}

TEST(IndexDirectory, givesBackPathsThatBecomeFolders) {
    const ProgramRun run = indexList("/usr\n/usr/bin\n/usr/bin/x\n/usr/lib\n/usr/lib/y\n/usr\n");
    expectAllEqual(run, "6");
    EXPECT_THAT(run.output, ContainsRegex("paths that became folders +3"));
}

TEST(IndexDirectory, takesMorePathsThanABatchHolds) {
    std::string list;
    for (int i = 0; i < 140'000; ++i) list += "d/" + std::to_string(i / 70) + "/f\n";
    const ProgramRun run = indexList(list);
    expectAllEqual(run, "140,000");
    EXPECT_THAT(run.output, ContainsRegex("folders +2,000 in 2,002 entries"));
}

TEST(IndexDirectory, refusesWhatIsNotThere) {
    expectRefused(indexDirectory("/none/such"), "/none/such: No such file or directory");
    expectRefused(indexDirectory(""), ": No such file or directory");
}

TEST(IndexDirectory, refusesADirectoryWithoutPaths) {
    const TemporaryTree tree;
    tree.addDirectory("a/b");
    expectRefused(indexDirectory(tree.path()), tree.path() + ": no paths in this directory");
}

TEST(IndexDirectory, refusesAnEmptyList) {
    expectRefused(indexDirectory("/dev/null"), "/dev/null: no paths in this list");
}

TEST(IndexDirectory, refusesALineThatIsNoPathAndSaysWhich) {
    const TemporaryTree tree;
    const std::string empty = tree.addFile("empty", "a\n\nb\n");
    expectRefused(indexDirectory(empty), empty + ":2: an empty line is no path");
    const std::string nul = tree.addFile("nul", std::string_view("a\nb\nc\0d\n", 8));
    expectRefused(indexDirectory(nul), nul + ":3: a path cannot hold a NUL byte");
}

TEST(IndexDirectory, refusesMoreThanOneArgument) {
    expectRefused(runProgram({ZQ_INDEX_DIRECTORY, "/a", "/b"}),
                  "usage: index_directory [DIRECTORY|LIST]");
}

/// The run by a user without the rights of root.
ProgramRun indexAsOrdinaryUser(const std::string& source) {
    if (::geteuid() != 0) return indexDirectory(source);
    return runProgram({"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups",
                       ZQ_INDEX_DIRECTORY, source});
}

/// True if the program can be run by a user for whom closed folders are closed.
bool canRunAsOrdinaryUser() {
    if (::geteuid() != 0) return true;
    return runProgram({"sh", "-c",
                       "setpriv --reuid=65534 --regid=65534 --clear-groups test -x "
                       "'" ZQ_INDEX_DIRECTORY "'"})
               .exitStatus == 0;
}

constexpr const char* kNoOrdinaryUser =
    "root reads every folder, and nobody else can run the program here";

TEST(IndexDirectory, reportsAnUnreadableFolderAndDoesTheRest) {
    if (!canRunAsOrdinaryUser()) GTEST_SKIP() << kNoOrdinaryUser;
    const TemporaryTree tree;
    for (const char* name : {"a/x", "closed/y", "z/x"}) tree.addFile(name);
    tree.allow("closed", 0);
    const ProgramRun run = indexAsOrdinaryUser(tree.path());
    EXPECT_EQ(run.exitStatus, 2);
    EXPECT_EQ(run.errors, tree.pathOf("closed") + ": Permission denied\n");
    EXPECT_THAT(run.output, ContainsRegex("unreadable, skipped +1"));
    EXPECT_THAT(run.output, HasSubstr("all 2 paths are equal"));
}

TEST(IndexDirectory, refusesAnUnreadableList) {
    if (!canRunAsOrdinaryUser()) GTEST_SKIP() << kNoOrdinaryUser;
    const TemporaryTree tree;
    const std::string list = tree.addFile("list", "a\n");
    tree.allow("list", 0);
    expectRefused(indexAsOrdinaryUser(list), list + ": Permission denied");
}

}  // namespace
