// Each verb that writes, with each of its system calls failing, or ending the program: the set is
// the old one or the new one, whole, and what the program says of it is true. What happens to a
// call goes round, so that each call meets one thing; ZQ_CALL_FAILURES says how many, up to all.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/FailingProgram.hpp"
#include "tests/support/RecordedDisk.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SavedPaths.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"

namespace zqpaths {
namespace {

using Effect = FailingSystemCalls::Effect;
using test_support::FailedRun;
using Arguments = std::vector<std::string>;
using Content = std::optional<Texts>;

struct Happening {
    const char* name;
    Effect effect;
    int error = 0;
};

constexpr std::array<Happening, 9> kHappenings{{{"EIO", Effect::kFailsOnce, EIO},
                                                {"ENOSPC", Effect::kFailsOnce, ENOSPC},
                                                {"the end before it", Effect::kEndsBefore},
                                                {"EDQUOT", Effect::kFailsOnce, EDQUOT},
                                                {"EINTR", Effect::kFailsOnce, EINTR},
                                                {"the end within it", Effect::kEndsWithin},
                                                {"EMFILE", Effect::kFailsOnce, EMFILE},
                                                {"EACCES", Effect::kFailsOnce, EACCES},
                                                {"half", Effect::kDoesHalf}}};

std::size_t happeningCount() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in the program changes the environment
    const char* const count = std::getenv("ZQ_CALL_FAILURES");
    return count == nullptr ? 1 : std::min<std::size_t>(std::stoul(count), kHappenings.size());
}

constexpr const char* kTemporary = ".zqpaths-";

struct WritingVerb {
    std::string name;
    Arguments arguments;  // FOLDER/ stands for the folder that it works in
    Texts targets;        // what it makes or changes there
    bool makesSets = true;
    bool takesWhatItCan = false;  // of what cannot be read, it says so and goes on
};

void PrintTo(const WritingVerb& verb, std::ostream* out) {
    *out << verb.name;
}

std::vector<WritingVerb> writingVerbs() {
    return {
        {"index", {"index", "FOLDER/n.zqp", "--list", "FOLDER/list"}, {"n.zqp"}},
        {"index_in_place",
         {"index", "--force", "FOLDER/s.zqp", "--list", "FOLDER/list"},
         {"s.zqp"}},
        {"index_of_a_directory",
         {"index", "-j1", "FOLDER/n.zqp", "FOLDER/../directory"},
         {"n.zqp"},
         true,
         true},
        {"add", {"add", "FOLDER/s.zqp", "--list", "FOLDER/list"}, {"s.zqp"}},
        {"add_to_a_set_of_sets", {"add", "FOLDER/all.zqs", "--list", "FOLDER/list"}, {"all.zqs"}},
        {"update", {"update", "-j1", "FOLDER/d.zqp"}, {"d.zqp"}},
        {"compact", {"compact", "FOLDER/s.zqp"}, {"s.zqp"}},
        {"compact_packed", {"compact", "--packed", "FOLDER/s.zqp", "FOLDER/n.zqp"}, {"n.zqp"}},
        {"merge", {"merge", "FOLDER/n.zqp", "FOLDER/t.zqp", "FOLDER/s.zqp"}, {"n.zqp"}},
        {"merge_to_a_set_of_sets",
         {"merge", "--force", "FOLDER/all.zqs", "FOLDER/t.zqp", "FOLDER/s.zqp"},
         {"all.zqs"}},
        {"merge_into",
         {"merge", "--into", "FOLDER/n.zqp", "FOLDER/t.zqp", "FOLDER/s.zqp"},
         {"n.zqp"}},
        {"import",
         {"import", "FOLDER/n.zqp", "--tree-string", "FOLDER/chars", "--path-tree", "FOLDER/paths"},
         {"n.zqp"}},
        {"export",
         {"export", "FOLDER/s.zqp", "--tree-string", "FOLDER/c", "--path-tree", "FOLDER/p"},
         {"c", "p"},
         false},
        {"report", {"report", "FOLDER/s.zqp", "FOLDER/page.html"}, {"page.html"}, false},
    };
}

class FailingVerb : public ::testing::TestWithParam<WritingVerb> {
protected:
    FailingVerb() {
        tree_.addFile("directory/one");
        tree_.addFile("directory/two");
        tree_.addDirectory("folder");
        tree_.addFile("folder/list", "new/one\nnew/two\n");
        save("s.zqp", {"a/one", "a/two", "a/three"}, 2);
        save("t.zqp", {"b/one"}, 0);
        SetManifestWriter manifest(fileNamed("all.zqs"));
        manifest.addSet(fileNamed("s.zqp"));
        manifest.commit();
        run({"export", "FOLDER/s.zqp", "--tree-string", "FOLDER/chars", "--path-tree",
             "FOLDER/paths"});
        run({"index", "FOLDER/d.zqp", "FOLDER/../directory"});
        std::filesystem::remove(tree_.pathOf("directory/one"));
        tree_.addFile("directory/three");
        folderBefore_ = RecordedDisk::contentOf(folder_);
        before_ = content();
        run(GetParam().arguments);
        after_ = content();
        namesAfter_ = namesInFolder();
    }

    std::string fileNamed(const std::string& name) const { return folder_ + "/" + name; }

    void save(const std::string& name, const Texts& paths, std::uint64_t gone) const {
        PathSetWriter writer(fileNamed(name));
        for (const std::string& path : paths) writer.add(path);
        if (gone > 0) writer.markGone(gone);
        writer.commit();
    }

    Arguments commandOf(Arguments arguments) const {
        for (std::string& argument : arguments)
            if (argument.rfind("FOLDER/", 0) == 0) argument.replace(0, 6, folder_);
        arguments.insert(arguments.begin(), ZQ_PROGRAM);
        return arguments;
    }

    void run(const Arguments& arguments) const {
        const test_support::ProgramRun run = test_support::runProgram(commandOf(arguments));
        EXPECT_EQ(run.exitStatus, 0) << run.errors;
    }

    /// What is in the targets, one after the other; nothing if none of them is there.
    Content content() const {
        Content all;
        for (const std::string& name : GetParam().targets) {
            if (!std::filesystem::exists(fileNamed(name))) continue;
            if (!all) all.emplace();
            const Texts paths = GetParam().makesSets ? answeredPaths(fileNamed(name)).value()
                                                     : Texts{contentOf(fileNamed(name))};
            all->insert(all->end(), paths.begin(), paths.end());
        }
        return all;
    }

    Texts namesInFolder() const {
        Texts names = namesIn(folder_);
        std::sort(names.begin(), names.end());
        return names;
    }

    bool hasTemporaryFile() const {
        for (const auto& [name, bytes] : RecordedDisk::contentOf(folder_))
            if (name.find(kTemporary) != std::string::npos) return true;
        return false;
    }

    /// The old set or the new one; or a part of the new one, if a verb that takes what it can could
    /// not read the rest and has said so, or was ended when it had given one of two files its name.
    void expectOldOrNew(const FailedRun& run) const {
        const Content now = content();
        if (run.program.exitStatus == 0) {
            EXPECT_EQ(now, after_);
            EXPECT_EQ(namesInFolder(), namesAfter_);
        } else if (now != before_ && now != after_) {
            const bool isEnded = run.program.exitStatus == FailingSystemCalls::kEnded;
            EXPECT_TRUE(isEnded ? GetParam().targets.size() > 1 : GetParam().takesWhatItCan);
            EXPECT_TRUE(now && std::all_of(now->begin(), now->end(),
                                           [&](const std::string& text) {
                                               return std::count(after_->begin(), after_->end(),
                                                                 text) == 1;
                                           }))
                << testing::PrintToString(now);
        }
    }

    /// A message that names the program, and a status that speaks of no damage.
    static void expectFailureTold(const FailedRun& run) {
        EXPECT_THAT(run.program.exitStatus, testing::AnyOf(2, 4));
        EXPECT_THAT(run.program.errors, testing::StartsWith("zqpaths: "));
    }

    /// Whoever comes next is not hindered: the verb does its work after all, and leaves no
    /// temporary file but one of another process that is no set.
    void expectGoingOn(const Content& now) const {
        if (now == before_) {
            run(GetParam().arguments);
            EXPECT_EQ(content(), after_);
        }
        if (!GetParam().makesSets) return;
        const std::string& target = GetParam().targets.front();
        run({"add", "-q", "FOLDER/" + target, "--list", "FOLDER/list"});
        Texts extended = now && now != before_ ? *now : *after_;
        extended.insert(extended.end(), {"new/one", "new/two"});
        EXPECT_EQ(content(), extended);
        expectWhole(fileNamed(target));
        EXPECT_FALSE(hasTemporaryFile());
    }

    /// False if the program makes fewer calls.
    bool isReached(std::size_t call, const Happening& happening) {
        RecordedDisk::putContent(folder_, folderBefore_);
        const FailedRun run = failing_.run(commandOf(GetParam().arguments),
                                           {call, happening.effect, happening.error});
        if (run.call.empty()) return false;
        SCOPED_TRACE(std::to_string(call) + ", " + run.call + ": " + happening.name + "\n" +
                     run.program.errors);
        ++counts_[run.program.exitStatus];
        expectOldOrNew(run);
        const bool isEnded = run.program.exitStatus == FailingSystemCalls::kEnded;
        if (!isEnded) {
            EXPECT_FALSE(hasTemporaryFile());
            for (const std::string& target : GetParam().targets)
                if (GetParam().makesSets && std::filesystem::exists(fileNamed(target)))
                    expectWhole(fileNamed(target));
            if (run.program.exitStatus != 0) expectFailureTold(run);
        }
        if (isEnded || happeningCount() > 1) expectGoingOn(content());
        return true;
    }

    test_support::TemporaryTree tree_;
    std::string folder_ = tree_.pathOf("folder");
    test_support::FailingProgram failing_{ZQ_FAILING_CALLS, tree_.pathOf("call")};
    RecordedDisk::Content folderBefore_;
    Content before_;
    Content after_;
    Texts namesAfter_;
    std::map<int, std::size_t> counts_;  // of runs, by exit status
};

TEST_P(FailingVerb, leavesTheOldSetOrTheNewOneAndSaysSo) {
    ASSERT_NE(before_, after_);
    std::size_t call = 1;
    for (bool isReached = true; isReached && !HasFailure(); ++call)
        for (std::size_t i = 0; isReached && i < happeningCount(); ++i)
            isReached = this->isReached(call, kHappenings.at((call + i) % kHappenings.size()));
    std::cout << call - 2 << " calls:";
    for (const auto& [status, count] : counts_)
        std::cout << " " << count << " times status " << status;
    std::cout << "\n";
    EXPECT_GE(call, 10U);
    EXPECT_GT(counts_[FailingSystemCalls::kEnded], 0U);
    EXPECT_GT(counts_[2], 0U);
}

INSTANTIATE_TEST_SUITE_P(of, FailingVerb, ::testing::ValuesIn(writingVerbs()),
                         [](const auto& verb) { return verb.param.name; });

}  // namespace
}  // namespace zqpaths
