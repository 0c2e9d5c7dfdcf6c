#include "tools/zqpaths/output/Output.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kManyBytes = 5'000'000;  // more than is held back, and than a pipe holds

/// Standard output is another descriptor while it lives.
class Redirection {
public:
    explicit Redirection(int descriptor) : kept_(dup(STDOUT_FILENO)) {
        static_cast<void>(std::fflush(stdout));
        dup2(descriptor, STDOUT_FILENO);
    }
    Redirection(const Redirection&) = delete;
    Redirection& operator=(const Redirection&) = delete;
    ~Redirection() {
        dup2(kept_, STDOUT_FILENO);
        close(kept_);
    }

private:
    int kept_;
};

/// What `print` writes, read at the other end of a pipe.
std::string printed(const OutputOptions& options, const std::function<void(Output&)>& print,
                    int flags = 0, const OutputManner& manner = {}) {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC | flags), 0);
    fcntl(ends[0], F_SETFL, 0);  // only writing may be told not to wait
    std::string text;
    std::thread reader([&text, in = ends[0]] {
        char buffer[1000];
        for (ssize_t count = 1; (count = read(in, buffer, sizeof buffer)) > 0;)
            text.append(buffer, static_cast<std::size_t>(count));
    });
    {
        const Redirection redirection(ends[1]);
        close(ends[1]);
        Output output(options, manner);
        print(output);
        output.finish();
    }
    reader.join();
    close(ends[0]);
    return text;
}

const OutputOptions kLines{};
const OutputOptions kNuls{.nulTerminated = true};
const OutputOptions kJson{.json = true};
const OutputOptions kTable{.csv = true};

std::string printed(const OutputOptions& options, const OutputManner& manner,
                    const std::function<void(Output&)>& print) {
    return printed(options, print, 0, manner);
}

OutputOptions with(OutputOptions options, PathFields fields) {
    options.fields = std::move(fields);
    return options;
}

constexpr PathField kAllFields[]{PathField::kNumber, PathField::kPath, PathField::kFolder,
                                 PathField::kName, PathField::kExtension};
const PathFields kAll(std::begin(kAllFields), std::end(kAllFields));

TEST(Output, printsAPathALine) {
    EXPECT_EQ(printed(kLines,
                      [](Output& output) {
                          output.path(1, "a");
                          output.path("c");
                          output.count(4);
                          output.pathIn(Side::kFirst, 5, "e");
                          output.pathIn(Side::kSecond, 6, "f");
                          output.line("text");
                      }),
              "a\nc\n4\n< e\n> f\ntext\n");
}

TEST(Output, printsWhatTheVerbPrintsUnlessFieldsAreAskedFor) {
    const auto print = [](Output& output) { output.path(7, "a/b.c"); };
    const OutputManner numbered{.asText = {PathField::kNumber, PathField::kPath}};
    EXPECT_EQ(printed(kLines, numbered, print), "7\ta/b.c\n");
    EXPECT_EQ(printed(with(kLines, {PathField::kName}), numbered, print), "b.c\n");
    EXPECT_EQ(printed(kJson, numbered, print), "{\"number\":7,\"path\":\"a/b.c\"}\n");
    const OutputManner walk{.forPrograms = {PathField::kPath}};
    EXPECT_EQ(printed(kTable, walk, [](Output& output) { output.path("a"); }), "path\r\na\r\n");
}

TEST(Output, printsFieldsInTheOrderGiven) {
    const auto print = [](Output& output) {
        output.path(7, "a/b.c");
        output.path(8, "d");
    };
    EXPECT_EQ(printed(with(kLines, kAll), print), "7\ta/b.c\ta/\tb.c\tc\n8\td\t\td\t\n");
    EXPECT_EQ(printed(with(kLines, {PathField::kName, PathField::kNumber}), print),
              "b.c\t7\nd\t8\n");
    EXPECT_EQ(printed(with(kTable, {PathField::kExtension, PathField::kNumber}), print),
              "extension,number\r\nc,7\r\n,8\r\n");
    EXPECT_EQ(printed(with(kJson, {PathField::kFolder, PathField::kExtension}), print),
              "{\"folder\":\"a/\",\"extension\":\"c\"}\n{\"folder\":\"\",\"extension\":\"\"}\n");
    EXPECT_EQ(printed(with(kLines, {PathField::kNumber}),
                      [](Output& output) { output.pathIn(Side::kFirst, 5, "e"); }),
              "<\t5\n");
}

TEST(Output, printsATableThatHasItsFirstLineAlsoWithoutPaths) {
    const auto nothing = [](Output& /*output*/) {};
    EXPECT_EQ(printed(kTable, nothing), "number,path\r\n");
    EXPECT_EQ(printed(kTable, OutputManner{.markKey = kSideKey}, nothing), "in,number,path\r\n");
    EXPECT_EQ(printed(kTable, OutputManner{.markKey = kSideKey},
                      [](Output& output) { output.pathIn(Side::kSecond, 5, "e"); }),
              "in,number,path\r\nsecond,5,e\r\n");
    EXPECT_EQ(printed(kTable, [](Output& output) { output.count(3); }), "count\r\n3\r\n");
}

TEST(Output, quotesCellsThatNeedIt) {
    EXPECT_EQ(printed(with(kTable, {PathField::kPath}),
                      [](Output& output) {
                          output.path(1, "a,b");
                          output.path(2, "say \"no\"");
                          output.path(3, "new\nline");
                          output.path(4, "re\rturn");
                          output.path(5, "\xFF and\ttab");
                      }),
              "path\r\n\"a,b\"\r\n\"say \"\"no\"\"\"\r\n\"new\nline\"\r\n\"re\rturn\"\r\n"
              "\xFF and\ttab\r\n");
}

TEST(Output, tellsHowManyPathsCouldBeMistaken) {
    const auto told = [](const OutputOptions& options, const OutputManner& manner = {}) {
        testing::internal::CaptureStderr();
        printed(options, manner, [](Output& output) {
            for (const char* path : {"a\nb", "c", "d\n/e", "f\t/g"}) output.path(1, path);
        });
        return testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(told(kLines), "zqpaths: 2 paths hold a newline, -0 ends paths with NUL\n");
    EXPECT_EQ(told(kLines, {.isQuiet = true}), "");
    EXPECT_EQ(told(kNuls) + told(kJson) + told(kTable), "");
    // Not before the last field: a tab is one of the name then.
    EXPECT_EQ(told(with(kNuls, {PathField::kNumber, PathField::kPath})), "");
    EXPECT_EQ(told(with(kNuls, {PathField::kFolder, PathField::kName})),
              "zqpaths: 1 path holds a tab, --csv and --json tell where a field ends\n");
    EXPECT_EQ(told(with(kLines, {PathField::kFolder})),
              "zqpaths: 1 path holds a newline, -0 ends paths with NUL\n");
}

TEST(Output, refusesStrictlyWhatCouldBeMistaken) {
    for (const PathFields& fields : {PathFields{}, kAll}) {
        OutputOptions strict = with(kLines, fields);
        strict.strict = true;
        EXPECT_EQ(printed(strict,
                          [](Output& output) {
                              EXPECT_THROW(output.path(2, "b\nc"), Failure);
                              EXPECT_NO_THROW(output.path(3, "d\\e"));
                          }),
                  printed(with(kLines, fields), [](Output& output) { output.path(3, "d\\e"); }));
    }
}

TEST(Output, endsPathsWithNulWhereTold) {
    using namespace std::string_literals;
    EXPECT_EQ(printed(kNuls,
                      [](Output& output) {
                          output.path(1, "a\n");
                          output.count(4);
                      }),
              "a\n\0004\n"s);
}

TEST(Output, printsAnObjectALine) {
    EXPECT_EQ(printed(kJson,
                      [](Output& output) {
                          output.path(1, "a\n\"");
                          output.path("caf\xC3\xA9");
                          output.count(4);
                          output.pathIn(Side::kSecond, 5, "e");
                      }),
              "{\"number\":1,\"path\":\"a\\n\\\"\"}\n{\"path\":\"caf\xC3\xA9\"}\n{\"count\":4}\n"
              "{\"in\":\"second\",\"number\":5,\"path\":\"e\"}\n");
}

TEST(Output, carriesTheBytesOfNamesThatAreNotUtf8) {
    EXPECT_EQ(printed(kJson,
                      [](Output& output) {
                          output.path(1,
                                      "a\xFF\xE2\x82"
                                      "b");
                      }),
              "{\"number\":1,\"path\":\"a\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"
              "b\","
              "\"bytes\":\"Yf/igmI=\"}\n");
}

TEST(Output, escapesInJsonWhatATerminalWouldObeyOrHide) {
    EXPECT_EQ(
        printed(kJson,
                [](Output& output) {
                    output.path("\x7F\xC2\x9B\xE2\x80\xAE\xE2\x80\xA8\xF3\xA0\x81\x81\xC3\xA9");
                }),
        "{\"path\":\"\\u007F\\u009B\\u202E\\u2028\\uDB40\\uDC41\xC3\xA9\"}\n");
}

TEST(Output, printsFoldersWithTheirFiles) {
    const std::vector<std::string> names{"x", "y\xFF"};
    const auto print = [&](Output& output) { output.group("a/", names); };
    EXPECT_EQ(printed(kLines, print), "a/\n\tx\n\ty\xFF\n");
    EXPECT_EQ(
        printed(kJson, print),
        "{\"folder\":\"a/\",\"files\":[\"x\",\"y\xEF\xBF\xBD\"],\"fileBytes\":[null,\"ef8=\"]}\n");
    EXPECT_EQ(printed(kJson,
                      [](Output& output) { output.group("\xFF/", std::vector<std::string>{"x"}); }),
              "{\"folder\":\"\xEF\xBF\xBD/\",\"folderBytes\":\"/y8=\",\"files\":[\"x\"]}\n");
}

TEST(Output, writesOnWhereAWriteTakesOnlyPart) {
    const std::string path(kManyBytes, 'x');
    const auto print = [&path](Output& output) {
        output.path(1, path);
        output.path(2, "end");
    };
    EXPECT_EQ(printed(kLines, print), path + "\nend\n");
    EXPECT_EQ(printed(kLines, print, O_NONBLOCK), path + "\nend\n");
}

TEST(Output, tellsWhyAWriteFailed) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    std::string reason;
    {
        const Redirection redirection(full);
        Output output(kLines);
        output.path(1, "a");
        try {
            output.finish();
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.status(), ExitStatus::kFailed);
            reason = failure.what();
        }
    }
    close(full);
    EXPECT_EQ(reason, "standard output: No space left on device");
}

TEST(Output, failsBeforeTheEndWhereMuchIsPrinted) {
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    bool hasFailed = false;
    {
        const Redirection redirection(full);
        Output output(kLines);
        try {
            for (std::size_t i = 0; i < kManyBytes; ++i) output.path(i, "a");
        } catch (const Failure&) {
            hasFailed = true;
        }
    }
    close(full);
    EXPECT_TRUE(hasFailed);
}

TEST(Output, tellsAClosedPipeFromAFailure) {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    int ends[2];
    ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
    close(ends[0]);
    bool isClosed = false;
    {
        const Redirection redirection(ends[1]);
        Output output(kLines);
        output.path(1, "a");
        try {
            output.finish();
        } catch (const ClosedPipe&) {
            isClosed = true;
        }
    }
    close(ends[1]);
    EXPECT_TRUE(isClosed);
}

}  // namespace
}  // namespace zqpaths::program
