// Whatever of a change has come to the device when the power fails, there is the old set or the new
// one, whole, and it can be added to; once the change has returned it is the new one.
// ZQ_POWER_LOSSES says how many states of the disk are tried of each change.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <iostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/DiskStates.hpp"
#include "tests/support/FailingSystemCalls.hpp"
#include "tests/support/RecordedDisk.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SavedPaths.hpp"
#include "tests/zqpaths/file/SetFileChanges.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"

namespace zqpaths {
namespace {

using Content = RecordedDisk::Content;
using Remains = RecordedDisk::Remains;

std::size_t lossCount() {
    constexpr std::size_t kFewLosses = 200;
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in the program changes the environment
    const char* const count = std::getenv("ZQ_POWER_LOSSES");
    return count == nullptr ? kFewLosses : std::stoul(count);
}

/// A change of a set, from one state to another, in a folder.
struct Change {
    std::string name;
    SetFileContent before;
    SetFileContent after;
    Texts names;  // in the folder, when paths were added after all
    std::function<void(const std::string& folder)> prepare;
    std::function<void(const std::string& folder)> run;
    std::function<SetFileContent(const std::string& folder)> read;  // none if there is no set
    std::function<void(const std::string& folder)> addNext;         // one path or segment, "next"
};

void PrintTo(const Change& change, std::ostream* out) {
    *out << change.name;
}

// Changes of set files, whose segments are texts.

Change changeOf(const SetFileStep& step) {
    const auto fileIn = [](const std::string& folder) { return folder + "/s.zqp"; };
    return {step.name,
            step.before,
            step.after,
            {"s.zqp"},
            [=](const std::string& folder) { step.prepare(fileIn(folder)); },
            [=](const std::string& folder) { step.run(fileIn(folder)); },
            [=](const std::string& folder) -> SetFileContent {
                if (!std::filesystem::exists(fileIn(folder))) return std::nullopt;
                return contentOfSet(*SetFile::open(fileIn(folder)));
            },
            [=](const std::string& folder) {
                const bool isThere = std::filesystem::exists(fileIn(folder));
                writeSet(fileIn(folder),
                         isThere ? SetFileWriter::Mode::kAppend : SetFileWriter::Mode::kCreate,
                         {"next"});
                static_cast<void>(openWhole(fileIn(folder)));
            }};
}

SetFileStep stepNamed(const std::string& name) {
    for (SetFileStep& step : setFileSteps())
        if (step.name == name) return std::move(step);
    throw std::out_of_range(name);
}

/// The same with segments that take many sectors.
Change changeByMuch(const SetFileStep& step, SetFileWriter::Mode mode) {
    const Texts segments{std::string(20'000, '1'), std::string(9'999, '2')};
    Change change = changeOf(step);
    change.name += " much";
    change.after = mode == SetFileWriter::Mode::kAppend ? *step.before : Texts();
    change.after->insert(change.after->end(), segments.begin(), segments.end());
    change.run = [=](const std::string& folder) { writeSet(folder + "/s.zqp", mode, segments); };
    return change;
}

/// Appending to a file with other bytes than its writer left.
Change appendingTo(const char* name, const std::function<std::string(std::string)>& changed) {
    SetFileStep step = stepNamed("appending");
    Change change = changeOf(step);
    change.name = name;
    change.prepare = [=](const std::string& folder) {
        const std::string file = folder + "/s.zqp";
        step.prepare(file);
        writeContent(file, changed(contentOf(file)));
    };
    return change;
}

/// Appending to what a writer left that was killed: bytes past the end, that no superblock names.
Change appendingAfterATail() {
    return appendingTo("appending after a tail",
                       [](std::string bytes) { return bytes + std::string(9000, 't'); });
}

/// Appending to a file whose latest superblock is half written, so that the one at its end counts.
Change appendingToARepairedFile() {
    return appendingTo("appending to a repaired file", [](std::string bytes) {
        bytes[kSuperblockOffsets[1]] ^= 1;  // of a file that is new, the second one counts
        return bytes;
    });
}

const char* callThatFailed = nullptr;

/// Creating where renaming cannot refuse to replace, so that a second name does it.
Change creatingByALink() {
    SetFileStep step = stepNamed("creating");
    Change change = changeOf(step);
    change.name = "creating by a link";
    change.run = [step](const std::string& folder) {
        for (std::size_t call = 1;; ++call) {
            const FailingSystemCalls calls(
                call, FailingSystemCalls::Effect::kFailsOnce, EINVAL,
                FailingSystemCalls::Scope::kThread,
                [](const char* name) noexcept { callThatFailed = name; });
            try {
                step.run(folder + "/s.zqp");
            } catch (const Error&) {
                continue;
            }
            if (std::strcmp(callThatFailed, "renameat2") == 0) return;
            step.prepare(folder + "/s.zqp");
        }
    };
    return change;
}

// Changes of sets of paths.

void addPaths(const std::string& file, PathSetWriter::Mode mode, const Texts& paths) {
    PathSetWriter writer(file, mode);
    for (const std::string& path : paths) writer.add(path);
    writer.commit();
}

/// Paths that take some sectors, after others.
Texts withMany(Texts paths) {
    for (std::size_t i = 0; i < 300; ++i)
        paths.push_back("folder " + std::to_string(i / 20) + "/file " + std::to_string(i * i));
    return paths;
}

Change changeOfPaths(const std::string& name, const std::string& file, Texts names) {
    Change change;
    change.name = name;
    change.names = std::move(names);
    change.read = [=](const std::string& folder) {
        if (std::filesystem::exists(folder + file)) expectWhole(folder + file);
        return answeredPaths(folder + file);
    };
    change.addNext = [=](const std::string& folder) {
        const bool isThere = std::filesystem::exists(folder + file);
        addPaths(folder + file,
                 isThere ? PathSetWriter::Mode::kAppend : PathSetWriter::Mode::kCreate, {"next"});
    };
    return change;
}

Change markingGone() {
    Change change = changeOfPaths("marking gone", "/s.zqp", {"s.zqp"});
    change.before = {"a", "b", "c"};
    change.after = withMany({"a", "(b)", "c"});
    change.prepare = [](const std::string& folder) {
        addPaths(folder + "/s.zqp", PathSetWriter::Mode::kReplace, {"a", "b", "c"});
    };
    change.run = [](const std::string& folder) {
        PathSetWriter writer(folder + "/s.zqp", PathSetWriter::Mode::kAppend);
        writer.markGone(2);
        for (const std::string& path : withMany({})) writer.add(path);
        writer.commit();
    };
    return change;
}

void makeManifest(const std::string& folder, SetManifestWriter::Mode mode, const Texts& sets) {
    SetManifestWriter manifest(folder + "/all.zqs", mode);
    for (const std::string& set : sets) manifest.addSet(folder + set);
    manifest.commit();
}

Change changeOfManifest(const std::string& name) {
    Change change = changeOfPaths(name, "/all.zqs", {"a.zqp", "all.zqs", "all.zqs.d", "b.zqp"});
    change.before = {"x"};
    change.prepare = [](const std::string& folder) {
        RecordedDisk::putContent(folder, {});
        addPaths(folder + "/a.zqp", PathSetWriter::Mode::kCreate, {"x"});
        addPaths(folder + "/b.zqp", PathSetWriter::Mode::kCreate, {"y", "z"});
        makeManifest(folder, SetManifestWriter::Mode::kCreate, {"/a.zqp"});
    };
    return change;
}

Change addingToAManifest() {
    Change change = changeOfManifest("adding to a set of sets");
    change.after = withMany({"x"});
    change.run = [](const std::string& folder) {
        addPaths(folder + "/all.zqs", PathSetWriter::Mode::kAppend, withMany({}));
    };
    return change;
}

Change replacingAManifest() {
    Change change = changeOfManifest("merging to a set of sets in place of one");
    change.after = {"y", "z", "x"};
    change.run = [](const std::string& folder) {
        makeManifest(folder, SetManifestWriter::Mode::kReplace, {"/b.zqp", "/a.zqp"});
    };
    return change;
}

Change makingAManifest() {
    Change change = replacingAManifest();
    change.name = "merging to a set of sets";
    change.before = std::nullopt;
    const auto prepareMore = change.prepare;
    change.prepare = [=](const std::string& folder) {
        prepareMore(folder);
        std::filesystem::remove(folder + "/all.zqs");
    };
    const auto addNext = change.addNext;
    change.addNext = [=](const std::string& folder) {
        // A set of sets in place of none is a set file; the folder tells one from the other.
        addNext(folder);
        std::filesystem::create_directory(folder + "/all.zqs.d");
    };
    change.run = [](const std::string& folder) {
        makeManifest(folder, SetManifestWriter::Mode::kCreate, {"/b.zqp", "/a.zqp"});
    };
    return change;
}

std::vector<Change> allChanges() {
    std::vector<Change> changes{changeByMuch(stepNamed("appending"), SetFileWriter::Mode::kAppend),
                                changeByMuch(stepNamed("replacing"), SetFileWriter::Mode::kReplace),
                                changeByMuch(stepNamed("creating"), SetFileWriter::Mode::kCreate),
                                appendingAfterATail(),
                                appendingToARepairedFile(),
                                creatingByALink(),
                                markingGone(),
                                addingToAManifest(),
                                makingAManifest(),
                                replacingAManifest()};
    for (const SetFileStep& step : setFileSteps()) changes.push_back(changeOf(step));
    return changes;
}

class PowerLoss : public ::testing::TestWithParam<Change> {
protected:
    PowerLoss() { tree_.addDirectory("folder"); }

    /// What a process finds that comes after the loss, and leaves.
    void look(const Content& content, bool hasReturned) {
        RecordedDisk::putContent(folder_, content);
        try {
            SetFileContent found = GetParam().read(folder_);
            const bool isNew = found == GetParam().after;
            ASSERT_TRUE(isNew || (!hasReturned && found == GetParam().before))
                << testing::PrintToString(found);
            ++(isNew ? newStates_ : oldStates_);
            GetParam().addNext(folder_);
            if (!found) found.emplace();
            found->emplace_back("next");
            EXPECT_EQ(GetParam().read(folder_), found);
            Texts names = namesIn(folder_);
            std::sort(names.begin(), names.end());
            EXPECT_EQ(names, GetParam().names);
        } catch (const Error& error) {
            ADD_FAILURE() << error.what();
        }
    }

    static std::string described(const Content& content) {
        std::string text;
        for (const auto& [name, bytes] : content)
            text += name + (bytes ? ": " + std::to_string(bytes->size()) + " bytes; " : "/; ");
        return text;
    }

    test_support::TemporaryTree tree_;
    std::string folder_ = std::filesystem::canonical(tree_.path()) / "folder";
    std::size_t oldStates_ = 0;
    std::size_t newStates_ = 0;
};

TEST_P(PowerLoss, leavesTheOldSetOrTheNewOne) {
    GetParam().prepare(folder_);
    RecordedDisk disk(folder_);
    GetParam().run(folder_);
    disk.stop();
    const std::size_t last = disk.operationCount();
    // Or something was done that is not recorded.
    ASSERT_EQ(disk.stateAfter(
                  last, [] { return true; }, Remains::kZeros),
              RecordedDisk::contentOf(folder_));

    const std::size_t count =
        DiskStates(disk, lossCount()).lookAtAll([&](const Content& content, bool hasReturned) {
            SCOPED_TRACE(described(content) + (hasReturned ? "after the end" : ""));
            if (!HasFailure()) look(content, hasReturned);
        });
    std::cout << last << " operations, " << count << " states: " << oldStates_ << " old, "
              << newStates_ << " new\n";
    EXPECT_GT(oldStates_, 0U);
    EXPECT_GT(newStates_, 0U);
}

INSTANTIATE_TEST_SUITE_P(in, PowerLoss, ::testing::ValuesIn(allChanges()), [](const auto& change) {
    std::string name = change.param.name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
});

// What is asked of states is worth as much as the states: a change that lacks a sync is found.

/// What all states have in a file that is written anew: "old", "new", "lost" for the old one after
/// all was done, or "third".
std::set<std::string> statesOfRewriting(bool isFileSynced, bool isFolderSynced) {
    const test_support::TemporaryTree tree;
    const std::string folder = std::filesystem::canonical(tree.path());
    const std::string newText(3000, 'n');
    tree.addFile("f", "old");
    RecordedDisk disk(folder);
    SystemFile file = SystemFile::open(folder + "/.f", O_RDWR | O_CREAT | O_EXCL, "f");
    file.writeAt(0, bytesOf(newText));
    if (isFileSynced) file.sync();
    std::filesystem::rename(folder + "/.f", folder + "/f");
    if (isFolderSynced) syncDirectoryOf(folder + "/f", "f");
    disk.stop();

    std::set<std::string> states;
    DiskStates(disk, 300).lookAtAll([&](const Content& content, bool hasReturned) {
        const std::string text = content.at("f").value();
        if (text == newText)
            states.insert("new");
        else if (text == "old")
            states.insert(hasReturned ? "lost" : "old");
        else
            states.insert("third");
    });
    return states;
}

TEST(PowerLossOfAnyFile, isFoundToDoHarmWhereASyncIsLacking) {
    using States = std::set<std::string>;
    EXPECT_EQ(statesOfRewriting(true, true), (States{"old", "new"}));
    EXPECT_EQ(statesOfRewriting(false, true), (States{"old", "new", "third"}));
    EXPECT_EQ(statesOfRewriting(true, false), (States{"old", "new", "lost"}));
    EXPECT_EQ(statesOfRewriting(false, false), (States{"old", "new", "lost", "third"}));
}

}  // namespace
}  // namespace zqpaths
