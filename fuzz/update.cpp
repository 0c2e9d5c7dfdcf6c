// A tree of files that changes by choices, and a set that is brought up to date with it. What a
// model of the tree says is in the set is present, all else is gone, and every path that ever was
// there keeps its number.

#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "fuzz/TemporaryFolder.hpp"
#include "tests/support/AppliedChange.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/directory/ScanOptions.hpp"
#include "zqpaths/update/SetScans.hpp"
#include "zqpaths/update/SetUpdate.hpp"

using namespace zqpaths;
using fuzzing::InputScript;
using fuzzing::require;

namespace {

constexpr std::size_t kMaxRounds = 6;
constexpr std::size_t kMaxChanges = 8;

/// A tree on disk, and what is in it. Symbolic links are files here: nobody follows them.
class ModelledTree {
public:
    explicit ModelledTree(std::string root) : root_(std::move(root)) {
        std::filesystem::create_directory(root_);
    }

    const std::string& root() const noexcept { return root_; }

    std::set<std::string> paths() const {
        std::set<std::string> paths;
        for (const auto& [name, isDirectory] : entries_)
            if (!isDirectory) paths.insert(root_ + '/' + name);
        return paths;
    }

    void change(InputScript& script) {
        const unsigned choice = script.byte() % 8;
        const std::string name = chooseName(script);
        if (choice < 3)
            addFile(name, choice == 0);
        else if (choice == 3)
            addDirectories(name);
        else if (choice < 6)
            remove(name);
        else
            rename(name, chooseName(script));
    }

private:
    static std::string chooseName(InputScript& script) {
        unsigned choice = script.byte();
        std::string name(1, static_cast<char>('a' + choice % 4));
        for (choice /= 4; choice % 4 > 0; choice /= 4)
            name += {'/', static_cast<char>('a' + script.byte() % 4)};
        return name;
    }

    std::string onDisk(const std::string& name) const { return root_ + '/' + name; }
    bool isThere(const std::string& name) const { return entries_.contains(name); }
    bool isDirectory(const std::string& name) const {
        const auto entry = entries_.find(name);
        return entry != entries_.end() && entry->second;
    }

    /// What is in a directory, at any depth.
    bool isIn(std::string_view name, const std::string& directory) const {
        return name.starts_with(directory + '/');
    }
    bool isEmpty(const std::string& directory) const {
        const auto next = entries_.upper_bound(directory + '/');
        return next == entries_.end() || !isIn(next->first, directory);
    }

    static std::string above(const std::string& name) {
        const std::size_t end = name.rfind('/');
        return end == std::string::npos ? std::string() : name.substr(0, end);
    }

    /// False if a file is in the way.
    bool addDirectories(const std::string& name) {
        if (name.empty() || isDirectory(name)) return true;
        if (isThere(name) || !addDirectories(above(name))) return false;
        std::filesystem::create_directory(onDisk(name));
        entries_[name] = true;
        return true;
    }

    void addFile(const std::string& name, bool isLink) {
        if (isThere(name) || !addDirectories(above(name))) return;
        if (isLink)
            std::filesystem::create_symlink("a", onDisk(name));
        else
            std::ofstream(onDisk(name)).flush();
        entries_[name] = false;
    }

    void remove(const std::string& name) {
        if (!isThere(name)) return;
        std::filesystem::remove_all(onDisk(name));
        std::erase_if(entries_, [&](const auto& entry) {
            return entry.first == name || isIn(entry.first, name);
        });
    }

    /// As the system does it: a file takes the place of a file, a directory that of an empty one.
    void rename(const std::string& from, const std::string& to) {
        if (!isThere(from) || from == to || isIn(to, from)) return;
        if (!above(to).empty() && !isDirectory(above(to))) return;
        if (isThere(to) && isDirectory(to) != isDirectory(from)) return;
        if (isDirectory(to) && !isEmpty(to)) return;
        std::filesystem::rename(onDisk(from), onDisk(to));
        std::map<std::string, bool> moved;
        for (const auto& [name, isOne] : entries_) {
            if (name == from || isIn(name, from))
                moved[to + name.substr(from.size())] = isOne;
            else if (name != to)
                moved[name] = isOne;
        }
        entries_ = moved;
    }

    std::string root_;
    std::map<std::string, bool> entries_;  // by names below the root; true for directories
};

/// A set of the paths below a root.
class UpdatedSet {
public:
    UpdatedSet(std::string file, std::string root, WalkOptions options, bool isSettled)
        : file_(std::move(file)),
          root_(std::move(root)),
          options_(std::move(options)),
          isSettled_(isSettled) {
        PathSetWriter writer(file_);
        ScanWriter scan({root_, began(), scanOptionsOf(options_)});
        walkDirectory(root_, options_,
                      {.onError = refuseErrors,
                       .onPath = [&](std::string_view path) { writer.add(path); },
                       .onDirectory = [&](const MetDirectory& met) { scan.add(met.directory); }});
        recordScans(writer, {std::move(scan).finish()});
        writer.commit();
        waitForTick();
    }

    PathSet open() const { return PathSet::open(file_); }

    /// Makes nothing of what is remembered if it `isForgetful`.
    void update(bool isForgetful) {
        PathSetWriter writer(file_, PathSetWriter::Mode::kAppend);
        const PathSet set = open();
        const std::vector<Scan> scans = scansOf(set);
        require(scans.size() == 1 && scans[0].root == root_, "the scan of the root is remembered");
        const std::vector<std::string> roots{root_};
        SetUpdate update(
            set, roots,
            {.onChange = [&](PathChange change, std::uint64_t number,
                             std::string_view path) { applyChange(change, number, path, writer); },
             .onError = refuseErrors,
             .onStep = [] {}});
        recordScans(writer,
                    {update.run(root_, options_, isForgetful ? nullptr : scans.data(), began())});
        writer.commit();
        waitForTick();
    }

private:
    static void refuseErrors(std::string_view /*path*/, std::string_view /*reason*/) {
        require(false, "all directories can be read");
    }

    /// A scan that seems to have begun later takes all directories for settled, which else takes
    /// two seconds.
    std::int64_t began() const {
        constexpr std::int64_t kAMinute = 60'000'000'000;
        return nowInNanoseconds() + (isSettled_ ? kAMinute : 0);
    }

    /// A change in the same tick of the system's clock would leave the times as they are.
    void waitForTick() const {
        if (!isSettled_) return;
        const auto now = [] {
            timespec time{};
            ::clock_gettime(CLOCK_REALTIME_COARSE, &time);
            return time.tv_sec * 1'000'000'000 + time.tv_nsec;
        };
        const auto before = now();
        const timespec step{0, 500'000};
        while (now() == before) ::nanosleep(&step, nullptr);
    }

    std::string file_;
    std::string root_;
    WalkOptions options_;
    bool isSettled_;
};

class Rounds {
public:
    Rounds(InputScript& script, const fuzzing::TemporaryFolder& folder, unsigned options)
        : script_(script),
          tree_(folder.pathOf("tree")),
          set_(folder.pathOf("s.zqp"), tree_.root(), {.jobs = 1 + options % 2},
               options / 2 % 4 == 0) {
        check();
    }

    void run() {
        for (std::size_t round = 0; round < kMaxRounds && !script_.isAtEnd(); ++round) {
            const bool isForgetful = script_.byte() % 8 == 0;
            changeTree();
            set_.update(isForgetful);
            check();
        }
    }

private:
    void changeTree() {
        for (std::size_t left = script_.byte() % kMaxChanges; left > 0; --left)
            tree_.change(script_);
    }

    void check() {
        const PathSet set = set_.open();
        std::set<std::string> present;
        set.forEach([&](std::uint64_t number, std::string_view path) {
            const std::string text(path);
            require(numbers_.emplace(text, number).first->second == number,
                    "a path keeps its number");
            if (!set.isGone(number)) present.insert(text);
        });
        require(present == tree_.paths(), "present is what is in the tree");
        require(set.size() == numbers_.size(), "each path is in the set once");
        require(set.presentCount() == present.size(), "the present paths are counted");
        require(set.verify().empty(), "an updated set is whole");
    }

    InputScript& script_;
    ModelledTree tree_;
    UpdatedSet set_;
    std::map<std::string, std::uint64_t> numbers_;  // of all paths that ever were there
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const fuzzing::TemporaryFolder folder;
    folder.clear();
    InputScript script(data, size);
    const unsigned options = script.byte();
    Rounds(script, folder, options).run();
    return 0;
}
