#include "tools/zqpaths/output/Output.hpp"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <thread>
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
                    int flags = 0) {
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
        Output output(options);
        print(output);
        output.finish();
    }
    reader.join();
    close(ends[0]);
    return text;
}

const OutputOptions kLines{};
const OutputOptions kNuls{true, false};
const OutputOptions kJson{false, true};

TEST(Output, printsAPathALine) {
    EXPECT_EQ(printed(kLines,
                      [](Output& output) {
                          output.path(1, "a");
                          output.numberedPath(2, "b");
                          output.path("c");
                          output.number(3, "d");
                          output.count(4);
                          output.pathIn(Side::kFirst, 5, "e");
                          output.pathIn(Side::kSecond, 6, "f");
                          output.line("text");
                      }),
              "a\n2\tb\nc\n3\n4\n< e\n> f\ntext\n");
}

TEST(Output, endsPathsWithNulWhereTold) {
    using namespace std::string_literals;
    EXPECT_EQ(printed(kNuls,
                      [](Output& output) {
                          output.path(1, "a\n");
                          output.numberedPath(2, "b");
                          output.count(4);
                      }),
              "a\n\0002\tb\0004\n"s);
}

TEST(Output, printsAnObjectALine) {
    EXPECT_EQ(printed(kJson,
                      [](Output& output) {
                          output.path(1, "a\n\"");
                          output.numberedPath(2, "b");
                          output.path("caf\xC3\xA9");
                          output.number(3, "d");
                          output.count(4);
                          output.pathIn(Side::kSecond, 5, "e");
                      }),
              "{\"number\":1,\"path\":\"a\\n\\\"\"}\n{\"number\":2,\"path\":\"b\"}\n"
              "{\"path\":\"caf\xC3\xA9\"}\n{\"number\":3,\"path\":\"d\"}\n{\"count\":4}\n"
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
