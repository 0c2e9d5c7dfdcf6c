// A process that ends at any system call leaves the old set or the new one, whole; the next writer
// removes what else it left.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>

#include "tests/support/FailingSystemCalls.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/file/SetFileChanges.hpp"

namespace zqpaths {
namespace {

using Effect = FailingSystemCalls::Effect;
using ::testing::ElementsAre;
using Mode = SetFileWriter::Mode;

class CrashedSetFile : public ::testing::TestWithParam<SetFileStep> {
protected:
    CrashedSetFile() { tree_.addDirectory("folder"); }

    /// Runs the step in a process that ends at this call; false if the step is done before.
    bool isEndedAt(std::size_t call, Effect effect) const {
        const pid_t child = ::fork();
        if (child == 0) {
            const FailingSystemCalls calls(call, effect, 0);
            GetParam().run(path_);
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status));
        const int exitStatus = WEXITSTATUS(status);
        EXPECT_TRUE(exitStatus == 0 || exitStatus == FailingSystemCalls::kEnded) << exitStatus;
        return exitStatus == FailingSystemCalls::kEnded;
    }

    /// What a reader finds. A superblock of which half is written has a wrong sum until the next
    /// writer mends it, so sums are not looked at here.
    SetFileContent found() const {
        if (!std::filesystem::exists(path_)) return std::nullopt;
        return contentOfSet(*SetFile::open(path_));
    }

    /// The file as the next writer finds and leaves it.
    void expectGoingOn() const {
        SetFileContent content = found();
        ASSERT_TRUE(content == GetParam().before || content == GetParam().after);
        EXPECT_LE(namesIn(tree_.pathOf("folder")).size(), 2U);
        if (!content) content.emplace();
        writeSet(path_, found() ? Mode::kAppend : Mode::kCreate, {"next"});
        content->emplace_back("next");
        EXPECT_EQ(contentAt(path_), content);
        EXPECT_THAT(namesIn(tree_.pathOf("folder")), ElementsAre("s.zqp"));
    }

    void expectGoingOnAfterEachCall(Effect effect) const {
        std::size_t call = 1;
        bool isEnded = true;
        for (; isEnded && !HasFailure(); ++call) {
            SCOPED_TRACE(call);
            GetParam().prepare(path_);
            isEnded = isEndedAt(call, effect);
            expectGoingOn();
        }
        EXPECT_GE(call, 10U);  // of system calls that a step makes
    }

    test_support::TemporaryTree tree_;
    std::string path_ = tree_.pathOf("folder/s.zqp");
};

TEST_P(CrashedSetFile, isWholeIfTheProcessEndsBeforeACall) {
    expectGoingOnAfterEachCall(Effect::kEndsBefore);
}

TEST_P(CrashedSetFile, isWholeIfTheProcessEndsWithinACall) {
    expectGoingOnAfterEachCall(Effect::kEndsWithin);
}

INSTANTIATE_TEST_SUITE_P(in, CrashedSetFile, ::testing::ValuesIn(setFileSteps()),
                         [](const auto& step) {
                             std::string name = step.param.name;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

}  // namespace
}  // namespace zqpaths
