// Adding to a set of sets, with each system call failing, or the process ending at it: the set is
// as it was or has all that was added.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/FailingSystemCalls.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"

namespace zqpaths {
namespace {

using Effect = FailingSystemCalls::Effect;
using Paths = std::vector<std::string>;

const Paths kBefore{"x"};
const Paths kAfter{"x", "y", "z"};

class FailingAddition : public testing::TestWithParam<Effect> {
protected:
    FailingAddition() {
        PathSetWriter writer(tree_.pathOf("a.zqp"));
        writer.add("x");
        writer.commit();
    }

    void prepare() const {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directory(folder_);
        SetManifestWriter manifest(all_);
        manifest.addSet(tree_.pathOf("a.zqp"));
        manifest.commit();
    }

    static void add(const std::string& file, const Paths& paths) {
        PathSetWriter writer(file, PathSetWriter::Mode::kAppend);
        for (const std::string& path : paths) writer.add(path);
        writer.commit();
    }

    Paths paths() const {
        Paths all;
        for (const std::string_view path : PathSet::open(all_)) all.emplace_back(path);
        return all;
    }

    /// The set as the next writer finds it and adds to it.
    void expectGoingOn() const {
        Paths found = paths();
        ASSERT_TRUE(found == kBefore || found == kAfter);
        add(all_, {"next"});
        found.emplace_back("next");
        EXPECT_EQ(paths(), found);
        EXPECT_THAT(namesIn(folder_), testing::UnorderedElementsAre("all.zqs", "all.zqs.d"));
    }

    test_support::TemporaryTree tree_;
    std::string folder_ = tree_.pathOf("folder");
    std::string all_ = folder_ + "/all.zqs";
};

constexpr std::size_t kFewCalls = 20;  // an addition makes more

class FailedAddition : public FailingAddition {};

TEST_P(FailedAddition, leavesTheSetAsItWasOrWithAllThatWasAdded) {
    std::size_t call = 1;
    for (bool hasFailed = true; hasFailed && !HasFailure(); ++call) {
        SCOPED_TRACE(call);
        prepare();
        bool isThrown = false;
        {
            const FailingSystemCalls calls(call, GetParam(), EIO);
            try {
                add(all_, {"y", "z"});
            } catch (const Error& error) {
                EXPECT_EQ(error.kind(), ErrorKind::kSystem) << error.what();
                isThrown = true;
            }
            hasFailed = calls.hasFailed();
        }
        EXPECT_TRUE(isThrown || paths() == kAfter);
        const bool isUntouched = paths() == kBefore;
        // Where no call works, what the manifest has now cannot be looked at.
        if (isUntouched && GetParam() == Effect::kFailsOnce) {
            EXPECT_THAT(namesIn(folder_), testing::ElementsAre("all.zqs"));
        }
        expectGoingOn();
    }
    EXPECT_GE(call, kFewCalls);
}

INSTANTIATE_TEST_SUITE_P(of, FailedAddition,
                         testing::Values(Effect::kFailsOnce, Effect::kFailsOnward),
                         [](const auto& test) {
                             return test.param == Effect::kFailsOnce ? "one_call" : "all_calls";
                         });

class EndedAddition : public FailingAddition {};

TEST_P(EndedAddition, leavesTheSetAsItWasOrWithAllThatWasAdded) {
    std::size_t call = 1;
    for (bool isEnded = true; isEnded && !HasFailure(); ++call) {
        SCOPED_TRACE(call);
        prepare();
        const pid_t child = ::fork();
        if (child == 0) {
            const FailingSystemCalls calls(call, GetParam(), 0);
            add(all_, {"y", "z"});
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFEXITED(status));
        isEnded = WEXITSTATUS(status) == FailingSystemCalls::kEnded;
        expectGoingOn();
    }
    EXPECT_GE(call, kFewCalls);
}

INSTANTIATE_TEST_SUITE_P(of, EndedAddition,
                         testing::Values(Effect::kEndsBefore, Effect::kEndsWithin),
                         [](const auto& test) {
                             return test.param == Effect::kEndsBefore ? "before_a_call"
                                                                      : "within_a_call";
                         });

}  // namespace
}  // namespace zqpaths
