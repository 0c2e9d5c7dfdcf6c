// Each system call that fails leaves the old set or the new one, whole, and nothing beside it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "tests/support/FailingSystemCalls.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/file/SetFileChanges.hpp"

namespace zqpaths {
namespace {

using Effect = FailingSystemCalls::Effect;
using ::testing::Each;

class FailingSetFile : public ::testing::TestWithParam<SetFileStep> {
protected:
    FailingSetFile() { tree_.addDirectory("folder"); }

    /// The error of the step when this call of it fails, if it throws one.
    std::optional<Error> errorAt(std::size_t call, Effect effect, int error) {
        GetParam().prepare(path_);
        const FailingSystemCalls calls(call, effect, error);
        std::optional<Error> thrown;
        try {
            GetParam().run(path_);
        } catch (const Error& failure) {
            thrown = failure;
        }
        hasFailed_ = calls.hasFailed();
        return thrown;
    }

    void expectWhole(const std::optional<Error>& error) const {
        const SetFileContent now = contentAt(path_);
        EXPECT_TRUE(now == GetParam().after || (error && now == GetParam().before));
        EXPECT_THAT(namesIn(tree_.pathOf("folder")), Each("s.zqp"));
    }

    void expectWholeAtEachCall(Effect effect, int error, ErrorKind kind) {
        std::size_t call = 1;
        do {
            SCOPED_TRACE(call);
            const auto thrown = errorAt(call, effect, error);
            expectWhole(thrown);
            if (thrown) {
                EXPECT_EQ(thrown->kind(), kind) << thrown->what();
            }
            ++call;
        } while (hasFailed_ && !HasFailure());
        EXPECT_GE(call, 10U);  // of system calls that a step makes
    }

    test_support::TemporaryTree tree_;
    std::string path_ = tree_.pathOf("folder/s.zqp");
    bool hasFailed_ = false;
};

TEST_P(FailingSetFile, isWholeAfterAnyCallFailed) {
    expectWholeAtEachCall(Effect::kFailsOnce, EIO, ErrorKind::kSystem);
}

TEST_P(FailingSetFile, isWholeAfterAllCallsFailedFromOneOn) {
    expectWholeAtEachCall(Effect::kFailsOnward, EIO, ErrorKind::kSystem);
}

TEST_P(FailingSetFile, isWholeWhenTheDeviceIsFull) {
    expectWholeAtEachCall(Effect::kFailsOnward, ENOSPC, ErrorKind::kNoSpace);
    expectWholeAtEachCall(Effect::kFailsOnce, EDQUOT, ErrorKind::kNoSpace);
}

TEST_P(FailingSetFile, isAsItWasIfTheStepSaysThatItFailed) {
    // The one exception: it has its name, and only whether that lasts is not known.
    const bool isAppended = GetParam().name == "appending" || GetParam().name == "updating";
    const std::size_t names = isAppended ? 0 : 2;
    std::size_t differing = 0;
    std::size_t call = 1;
    do {
        const auto thrown = errorAt(call++, Effect::kFailsOnce, EIO);
        if (thrown && contentAt(path_) != GetParam().before) ++differing;
    } while (hasFailed_);
    EXPECT_LE(differing, names);
}

TEST_P(FailingSetFile, isWrittenWhereRenamingCannotRefuse) {
    std::size_t call = 1;
    do {
        const auto thrown = errorAt(call++, Effect::kFailsOnce, EINVAL);
        expectWhole(thrown);
    } while (hasFailed_ && !HasFailure());
}

TEST_P(FailingSetFile, isWrittenThroughInterruptions) {
    GetParam().prepare(path_);
    {
        const InterruptedSystemCalls interruptions;
        GetParam().run(path_);
    }
    EXPECT_EQ(contentAt(path_), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(in, FailingSetFile, ::testing::ValuesIn(setFileSteps()),
                         [](const auto& step) {
                             std::string name = step.param.name;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

TEST(SetFile, isReadThroughInterruptions) {
    const test_support::TemporaryTree tree;
    const std::string path = tree.pathOf("s.zqp");
    writeSet(path, SetFileWriter::Mode::kCreate, {"one"});
    const InterruptedSystemCalls interruptions;
    EXPECT_THAT(segmentsOf(path), ::testing::ElementsAre("one"));
}

std::string emptiedFile;

/// As another process may do it at any time, here before the size is looked at.
void emptyFile(const char* call) noexcept {
    if (std::string_view(call) == "fstat")
        static_cast<void>(::truncate(emptiedFile.c_str(), 0) == 0);
}

TEST(SetFile, isRefusedIfItIsEmptiedWhileItIsOpened) {
    const test_support::TemporaryTree tree;
    emptiedFile = tree.pathOf("s.zqp");
    Texts reasons;
    bool hasFailed = true;
    for (std::size_t call = 1; hasFailed; ++call) {
        writeSet(emptiedFile, SetFileWriter::Mode::kReplace, {"one"});
        const FailingSystemCalls calls(call, Effect::kDoesHalf, 0,
                                       FailingSystemCalls::Scope::kThread, emptyFile);
        try {
            SetFile::open(emptiedFile);
        } catch (const Error& error) {
            reasons.emplace_back(error.what());
        }
        hasFailed = calls.hasFailed();
    }
    EXPECT_THAT(reasons, ::testing::Contains(emptiedFile + ": is no saved set"));
    EXPECT_THAT(reasons, ::testing::Contains(
                             ::testing::StartsWith(emptiedFile + ": has 0 bytes instead of ")));
}

TEST(SetFile, lacksMemoryIfItCannotBeMapped) {
    const test_support::TemporaryTree tree;
    const std::string path = tree.pathOf("s.zqp");
    writeSet(path, SetFileWriter::Mode::kCreate, {"one"});
    std::size_t lacking = 0;
    bool hasFailed = true;
    for (std::size_t call = 1; hasFailed; ++call) {
        const FailingSystemCalls calls(call, Effect::kFailsOnce, ENOMEM);
        try {
            SetFile::open(path);
        } catch (const std::bad_alloc&) {
            ++lacking;
        } catch (const Error& error) {
            EXPECT_EQ(error.kind(), ErrorKind::kSystem);
        }
        hasFailed = calls.hasFailed();
    }
    EXPECT_EQ(lacking, 1U);
}

}  // namespace
}  // namespace zqpaths
