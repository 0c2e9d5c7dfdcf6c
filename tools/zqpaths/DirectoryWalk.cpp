#include "tools/zqpaths/DirectoryWalk.hpp"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/zqpaths/PathComponents.hpp"

namespace zqpaths {
namespace {

/// Directories that are open at a time, besides the root. A process may often open no more than
/// 1,024 files, and the program around the walk wants some of them.
constexpr std::size_t kMaxOpen = 64;

class FileDescriptor {
public:
    explicit FileDescriptor(int number = kClosed) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : number_(std::exchange(other.number_, kClosed)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() {
        if (isOpen()) ::close(number_);
    }

    bool isOpen() const noexcept { return number_ != kClosed; }
    int number() const noexcept { return number_; }
    void release() noexcept { number_ = kClosed; }  // to an owner who closes it

private:
    static constexpr int kClosed = -1;
    int number_;
};

FileDescriptor openDirectory(int parent, const std::string& name, int flags) {
    return FileDescriptor(
        ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | flags));
}

struct CloseDirectory {
    void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};
using DirectoryStream = std::unique_ptr<DIR, CloseDirectory>;

class Walk {
public:
    Walk(const PathVisitor& onPath, const ErrorVisitor& onError)
        : onPath_(onPath), onError_(onError) {}

    void run(const std::string& root) {
        path_ = root;
        enter(openDirectory(AT_FDCWD, root, 0));
        while (!levels_.empty()) {
            Level& level = levels_.back();
            path_.resize(level.pathLength);
            if (level.next == level.subdirectories.size()) {
                levels_.pop_back();
            } else if (level.directory.isOpen() || reopen()) {
                const std::string& name = level.subdirectories[level.next++];
                path_.append(name);
                enter(openDirectory(level.directory.number(), name, O_NOFOLLOW));
            }
        }
    }

private:
    /// A directory some of whose sub-directories are still to be entered. The root and the last
    /// kMaxOpen levels may be open, others are not.
    struct Level {
        FileDescriptor directory;
        std::vector<std::string> subdirectories;  // in byte order
        std::size_t next;                         // of the sub-directories; the one before is below
        std::size_t pathLength;                   // of its path with a separator at the end
    };

    /// Reports the files of a directory, whose path is `path_`, and makes it a level if there is
    /// more in it.
    void enter(FileDescriptor directory) {
        if (!directory.isOpen()) return reportError();
        std::vector<std::string> subdirectories;
        readNames(directory.number(), subdirectories);
        if (path_.empty() || path_.back() != kSeparator) path_.push_back(kSeparator);
        const std::size_t pathLength = path_.size();
        for (const std::string& name : files_) {
            path_.append(name);
            onPath_(path_);
            path_.resize(pathLength);
        }
        if (subdirectories.empty()) return;

        if (levels_.size() > kMaxOpen)
            levels_[levels_.size() - kMaxOpen].directory = FileDescriptor();
        levels_.push_back({std::move(directory), std::move(subdirectories), 0, pathLength});
    }

    /// Sorts the names in a directory into `files_` and `subdirectories`.
    void readNames(int directory, std::vector<std::string>& subdirectories) {
        files_.clear();
        const DirectoryStream stream = streamOf(directory);
        if (!stream) return reportError();
        while (true) {
            errno = 0;
            // NOLINTNEXTLINE(concurrency-mt-unsafe): the stream belongs to this walk alone
            const dirent* const entry = ::readdir(stream.get());
            if (entry == nullptr) break;
            std::string name = entry->d_name;
            if (name == "." || name == "..") continue;
            auto& names = isDirectory(directory, *entry) ? subdirectories : files_;
            names.push_back(std::move(name));
        }
        if (errno != 0) reportError();
        std::sort(files_.begin(), files_.end());
        std::sort(subdirectories.begin(), subdirectories.end());
    }

    /// A stream with a descriptor of its own, so that it can be closed while the directory is open.
    static DirectoryStream streamOf(int directory) {
        FileDescriptor own(::fcntl(directory, F_DUPFD_CLOEXEC, 0));
        if (!own.isOpen()) return nullptr;
        DirectoryStream stream(::fdopendir(own.number()));
        if (!stream) return nullptr;
        own.release();
        return stream;
    }

    static bool isDirectory(int directory, const dirent& entry) {
        if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
        struct stat status {};  // some file systems do not say
        return ::fstatat(directory, entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
               S_ISDIR(status.st_mode);
    }

    /// Opens the last level again, and with it those above that may be open. If one of them is not
    /// there any more, reports so and gives up what is left of the last level.
    bool reopen() {
        const std::size_t last = levels_.size() - 1;
        FileDescriptor passing;  // a level that is not to stay open
        int parent = levels_.front().directory.number();
        for (std::size_t i = 1; i <= last; ++i) {
            const Level& above = levels_[i - 1];
            FileDescriptor child =
                openDirectory(parent, above.subdirectories[above.next - 1], O_NOFOLLOW);
            if (!child.isOpen()) {
                reportError();
                levels_[last].next = levels_[last].subdirectories.size();
                return false;
            }
            FileDescriptor& place = i + kMaxOpen > last ? levels_[i].directory : passing;
            place = std::move(child);
            parent = place.number();
        }
        return true;
    }

    void reportError() { onError_(path_, std::generic_category().message(errno)); }

    const PathVisitor& onPath_;
    const ErrorVisitor& onError_;
    std::string path_;                // of the directory or file at hand
    std::vector<Level> levels_;       // from the root down
    std::vector<std::string> files_;  // of the directory that was read last
};

}  // namespace

void walkDirectory(const std::string& root, const PathVisitor& onPath,
                   const ErrorVisitor& onError) {
    Walk(onPath, onError).run(root);
}

}  // namespace zqpaths
