#pragma once
// A set of the paths below a directory, as a program makes it and brings it up to date, with all
// that the two tell:
//
//     UpdatedSet set(tree.path());
//     tree.addFile("a/new");
//     set.update();  // {"+ a/new"}
//
// A scan takes all directories for settled, which else takes two seconds; the tick of the system's
// clock is waited for.
//
// Threads: belongs to one thread at a time.

#include <chrono>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/AppliedChange.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/directory/ScanOptions.hpp"
#include "zqpaths/update/SetScans.hpp"
#include "zqpaths/update/SetUpdate.hpp"

namespace zqpaths {

class UpdatedSet {
public:
    explicit UpdatedSet(std::string root, const WalkOptions& options = {.jobs = 2})
        : UpdatedSet(std::vector{std::move(root)}, options) {}

    UpdatedSet(const std::vector<std::string>& roots, const WalkOptions& options)
        : roots_(roots), options_(options) {
        PathSetWriter writer(file());
        std::vector<EncodedScan> scans;
        for (const std::string& root : roots_) {
            ScanWriter scan({root, soon(), scanOptionsOf(options_)});
            walkDirectory(
                root, options_,
                {.onError = [](std::string_view, std::string_view) {},
                 .onPath = [&](std::string_view path) { writer.add(path); },
                 .onDirectory = [&](const MetDirectory& met) { scan.add(met.directory); }});
            scans.push_back(std::move(scan).finish());
        }
        recordScans(writer, std::move(scans));
        writer.commit();
        waitForTick();
    }

    std::string file() const { return own_.pathOf("s.zqp"); }
    PathSet open() const { return PathSet::open(file()); }

    /// What changes, as "+ PATH", "- PATH" or "* PATH" for what is back; without the first root.
    std::vector<std::string> update() {
        PathSetWriter writer(file(), PathSetWriter::Mode::kAppend);
        const PathSet set = open();
        const std::vector<Scan> scans = scansOf(set);
        std::vector<std::string> told;
        errors.clear();
        lookedAt = 0;
        SetUpdate update(set, roots_,
                         {.onChange =
                              [&](PathChange change, std::uint64_t number, std::string_view path) {
                                  told.push_back(textOf(change) + ' ' + shortened(path));
                                  applyChange(change, number, path, writer);
                              },
                          .onError =
                              [&](std::string_view path, std::string_view reason) {
                                  errors.push_back(shortened(path) + ": " + std::string(reason));
                              },
                          .onStep = [&] { ++lookedAt; }});
        std::vector<EncodedScan> updated;
        for (const Scan& scan : scans)
            updated.push_back(
                update.run(scan.root, options_, isForgetful ? nullptr : &scan, soon()));
        recordScans(writer, std::move(updated));
        writer.commit();
        waitForTick();
        return told;
    }

    /// The paths that are there now, with their numbers.
    std::map<std::string, std::uint64_t> present() const {
        std::map<std::string, std::uint64_t> paths;
        const PathSet set = open();
        set.forEach([&](std::uint64_t number, std::string_view path) {
            if (!set.isGone(number)) paths.emplace(path, number);
        });
        return paths;
    }

    /// What a walk gives now.
    std::set<std::string> walked() const {
        std::set<std::string> paths;
        for (const std::string& root : roots_)
            walkDirectory(
                root, options_, [&](std::string_view path) { paths.emplace(path); },
                [](std::string_view, std::string_view) {});
        return paths;
    }

    std::vector<std::string> errors;  // of the last update: "PATH: REASON"
    std::size_t lookedAt = 0;         // directories that were not known to be as they were, by it
    bool isForgetful = false;         // makes nothing of what was remembered

private:
    static std::int64_t soon() {
        constexpr std::int64_t kAMinute = 60'000'000'000;
        return nowInNanoseconds() + kAMinute;
    }

    static void waitForTick() { std::this_thread::sleep_for(std::chrono::milliseconds{12}); }

    static std::string textOf(PathChange change) {
        return change == PathChange::kAdded ? "+" : change == PathChange::kGone ? "-" : "*";
    }

    std::string shortened(std::string_view path) const {
        const std::string folder = folderOfRoot(roots_.front());
        if (path.starts_with(folder)) path.remove_prefix(folder.size());
        return std::string(path);
    }

    test_support::TemporaryTree own_;
    std::vector<std::string> roots_;
    WalkOptions options_;
};

}  // namespace zqpaths
