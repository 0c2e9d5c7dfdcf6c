#include "zqpaths/directory/DirectoryWalk.hpp"

#include <algorithm>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <vector>

#include "zqpaths/directory/DirectoryReader.hpp"
#include "zqpaths/directory/WalkedDirectory.hpp"
#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

using State = WalkedDirectory::State;

constexpr unsigned kMaxJobs = 64;  // each holds a few open files
constexpr std::size_t kMaxAheadOfAJob = 32;
constexpr std::size_t kMaxNamesAhead = 1'000'000;

unsigned threadsFor(const WalkOptions& options) {
    return std::min(options.jobs > 0 ? options.jobs : threadCount(), kMaxJobs);
}

/// The directories that are known and not yet reported stand in a list in the order in which they
/// will be; one that has been read gets its sub-directories right after it. The thread that walks
/// takes them from the front and reads the front one itself if nobody has; helpers read the first
/// that are unread. So the order is that of the names, whoever reads.
class Walk {
public:
    Walk(const WalkOptions& options, const WalkVisitors& visitors, const KnownDirectories* known)
        : reader_(options, known), visitors_(visitors), threadCount_(threadsFor(options)) {}
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    ~Walk() {
        {
            const std::lock_guard lock(mutex_);
            isOver_ = true;
        }
        workThere_.notify_all();
    }

    LeftOutNames run(const std::string& root, std::optional<std::uint32_t> known) {
        ahead_.emplace_back(nullptr, root);
        ahead_.back().known = known;
        report(takeFirst());
        return goOn();
    }

    LeftOutNames run(const std::string& root, const WalkPart& part) {
        WalkedDirectory* above = nullptr;
        for (std::size_t i = 0; i < part.names.size(); ++i)
            above = &lead(above, above == nullptr ? root : part.names[i - 1]);
        ahead_.emplace_back(above, above == nullptr ? root : part.names.back());
        report(takeFirst());
        if (part.isDeep) return goOn();
        if (visitors_.onSubdirectory)
            for (const WalkedDirectory& directory : ahead_)
                visitors_.onSubdirectory(directory.name);
        return leftOut_;
    }

private:
    using Place = std::list<WalkedDirectory>::iterator;
    using Lock = std::unique_lock<std::mutex>;

    /// A directory on the way to the one that a part begins with, as if it had been reported.
    WalkedDirectory& lead(WalkedDirectory* above, const std::string& name) {
        WalkedDirectory& directory = entered_.emplace_back(above, name);
        directory.state = State::kRead;
        reader_.lead(directory);
        beginPath(directory);
        endPath(directory);
        return directory;
    }

    /// Walks all that is ahead.
    LeftOutNames goOn() {
        if (ahead_.empty()) return leftOut_;
        for (unsigned i = 1; i < threadCount_; ++i) helpers_.emplace_back([this] { help(); });
        while (hasMore()) report(takeFirst());
        return leftOut_;
    }

    bool hasMore() {
        const Lock lock(mutex_);
        return !ahead_.empty();
    }

    /// The first directory, read; it is now the last of `entered_`.
    WalkedDirectory& takeFirst() {
        Lock lock(mutex_);
        const auto first = ahead_.begin();
        if (first->state == State::kUnread) read(first, lock);
        firstIsRead_.wait(lock, [first] { return first->state == State::kRead; });

        for (; !entered_.empty() && &entered_.back() != first->parent; entered_.pop_back())
            reader_.drop(entered_.back());
        entered_.splice(entered_.end(), ahead_, first);
        if (!first->isKept()) --directoriesAhead_;
        namesAhead_ -= first->files.size();
        workThere_.notify_one();
        return *first;
    }

    void help() {
        Lock lock(mutex_);
        while (true) {
            Place unread;
            workThere_.wait(lock, [&] {
                unread = firstUnread();
                return isOver_ || unread != ahead_.end();
            });
            if (isOver_) return;
            read(unread, lock);
        }
    }

    /// The end if there is none, or too much is ahead. O(directories ahead).
    Place firstUnread() {
        if (directoriesAhead_ >= kMaxAheadOfAJob * threadCount_ || namesAhead_ >= kMaxNamesAhead)
            return ahead_.end();
        return std::ranges::find(ahead_, State::kUnread, &WalkedDirectory::state);
    }

    /// Reads a directory, with the lock released meanwhile.
    void read(Place place, Lock& lock) {
        place->state = State::kBeingRead;
        ++directoriesAhead_;
        lock.unlock();
        std::list<WalkedDirectory> subdirectories = reader_.read(*place);
        lock.lock();
        namesAhead_ += place->files.size();
        if (!subdirectories.empty()) workThere_.notify_all();
        ahead_.splice(std::next(place), subdirectories);
        place->state = State::kRead;
        firstIsRead_.notify_one();
    }

    /// Makes the path that of a directory, then that of what is in it, which a separator ends.
    void beginPath(const WalkedDirectory& directory) {
        path_.resize(directory.parent == nullptr ? 0 : directory.parent->pathLength);
        path_.append(directory.name);
    }
    void endPath(WalkedDirectory& directory) {
        if (path_.empty() || path_.back() != kSeparator) path_.push_back(kSeparator);
        directory.pathLength = path_.size();
    }

    void report(WalkedDirectory& directory) {
        if (directory.failure) std::rethrow_exception(directory.failure);
        if (directory.isKept()) {
            if (visitors_.onKept) visitors_.onKept(*directory.known, directory.keptEnd);
            return;
        }
        leftOut_ += directory.leftOut;
        beginPath(directory);
        if (directory.sameAbove != nullptr)
            visitors_.onError(path_,
                              "is " + pathOf(*directory.sameAbove) + ", in which it is: a loop");
        else if (directory.error != 0)
            visitors_.onError(path_, std::generic_category().message(directory.error));
        endPath(directory);
        if (visitors_.onDirectory) visitors_.onDirectory(met(directory));
        if (visitors_.onPath) {
            for (const std::string& name : directory.files) {
                path_.append(name);
                visitors_.onPath(path_);
                path_.resize(directory.pathLength);
            }
        }
        directory.files = {};
    }

    MetDirectory met(const WalkedDirectory& directory) const {
        ScannedDirectory scanned;
        if (directory.parent != nullptr) scanned.name = directory.name;
        scanned.subdirectoryCount = static_cast<std::uint32_t>(directory.subdirectoryCount);
        scanned.state = directory.isLeftOut    ? ScanState::kLeftOut
                        : directory.error != 0 ? ScanState::kUnreadable
                        : directory.hasLinks   ? ScanState::kReadAgain
                                               : ScanState::kRead;
        scanned.stamp = directory.stamp;
        return {.path = path_,
                .directory = scanned,
                .known = directory.known,
                .isUnchanged = directory.isUnchanged,
                .files = directory.files,
                .gone = directory.gone};
    }

    /// The path of a directory that leads to the one at hand.
    std::string pathOf(const WalkedDirectory& above) const {
        const std::string path = path_.substr(0, above.pathLength);
        return path.size() > 1 ? path.substr(0, path.size() - 1) : path;
    }

    DirectoryReader reader_;
    const WalkVisitors& visitors_;
    const unsigned threadCount_;
    std::string path_;                    // of the directory or file at hand
    LeftOutNames leftOut_;                // of the directories that were reported
    std::list<WalkedDirectory> entered_;  // from the root to the directory at hand

    std::mutex mutex_;  // guards what follows, and the states of all directories
    std::condition_variable workThere_;
    std::condition_variable firstIsRead_;
    std::list<WalkedDirectory> ahead_;
    std::size_t directoriesAhead_ = 0;  // of `ahead_`, those not unread, without those kept
    std::size_t namesAhead_ = 0;        // of files in them
    bool isOver_ = false;

    std::vector<std::jthread> helpers_;  // last, so that they end first
};

}  // namespace

LeftOutNames walkDirectory(const std::string& root, const WalkOptions& options,
                           const WalkVisitors& visitors, const KnownDirectories* known) {
    std::optional<std::uint32_t> place;
    if (known != nullptr && known->scan.directories.front().state < ScanState::kUnreadable)
        place = 0;
    return Walk(options, visitors, known).run(root, place);
}

LeftOutNames walkPart(const std::string& root, const WalkPart& part, const WalkOptions& options,
                      const WalkVisitors& visitors) {
    return Walk(options, visitors, nullptr).run(root, part);
}

LeftOutNames walkDirectory(const std::string& root, const WalkOptions& options,
                           const EntryVisitor& onPath, const ErrorVisitor& onError) {
    return walkDirectory(root, options, {.onError = onError, .onPath = onPath});
}

}  // namespace zqpaths
