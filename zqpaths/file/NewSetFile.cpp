// Set files that are new: where there was none, or in the place of another.

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <utility>

#include "zqpaths/Error.hpp"
#include "zqpaths/file/FileLock.hpp"
#include "zqpaths/file/PendingFile.hpp"
#include "zqpaths/file/SetFileChange.hpp"

namespace zqpaths {
namespace {

constexpr std::uint64_t kFirstSequence = 1;

/// Throws Error if no file can have the path because it names none.
void requireName(const std::string& path) {
    if (path.empty()) throw systemError(path, ENOENT);
    if (path.back() == '/') throw systemError(path, EISDIR);
}

/// Throws Error kExists if anything has the path, and what the system says of a path that nothing
/// can have.
void requireFree(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0) throw Error(ErrorKind::kExists, path, kIsThere);
    if (errno != ENOENT && errno != ENOTDIR) throw systemError(path, errno);
}

/// Throws Error kNotASet unless the file is one that may give way to a set.
void requireReplaceable(const SystemFile& file) {
    requireRegularFile(file);
    std::array<std::byte, kTellingFront> front{};
    std::array<std::byte, kTellingEnd> end{};
    const std::size_t frontSize = file.readAt(0, front);
    const std::uint64_t endSize = std::min<std::uint64_t>(file.size(), end.size());
    const std::size_t endRead =
        file.readAt(file.size() - endSize, std::span(end).first(static_cast<std::size_t>(endSize)));
    if (!isOfOurs(std::span(front).first(frontSize), std::span(end).first(endRead)))
        throw Error(ErrorKind::kNotASet, file.name(), kIsNoSet);
}

class NewSetFile : public SetFileChange {
public:
    explicit NewSetFile(const std::string& path, const std::string& name)
        : pending_(path, name, kWriterWait), body_(pending_.file(), kPageSize, Directory{}) {}

    SetFileBody& body() noexcept override { return body_; }
    const std::shared_ptr<const SetFile>& committed() const noexcept override { return nothing_; }

protected:
    PendingFile& pending() noexcept { return pending_; }

private:
    std::shared_ptr<const SetFile> nothing_;
    PendingFile pending_;
    SetFileBody body_;
};

class CreatedSetFile final : public NewSetFile {
public:
    explicit CreatedSetFile(const std::string& path) : NewSetFile(path, path) {
        requireFree(path);  // we may have waited for one who made it
    }

    void commit() override {
        finishNewFile(pending().file(), body(), 0);
        pending().publish();
        pending().file().close();
    }
};

/// Has the lock of the file that it replaces, so that nobody appends to it meanwhile what would
/// then be gone.
class ReplacedSetFile final : public NewSetFile {
public:
    ReplacedSetFile(std::string path, const std::string& name, std::optional<SystemFile> replaced)
        : NewSetFile(path, name), path_(std::move(path)), replaced_(std::move(replaced)) {
        takeRights();
    }

    /// The file that is there, locked.
    static std::optional<SystemFile> lockThere(const std::string& path, const std::string& name) {
        std::optional<SystemFile> there =
            openLocked(path, O_RDONLY | O_NONBLOCK, name, kWriterWait);
        if (there) requireReplaceable(*there);
        return there;
    }

    void commit() override {
        if (!replaced_ || !replaced_->isAt(path_)) {
            replaced_ = lockThere(path_, pending().file().name());
            takeRights();
        }
        finishNewFile(pending().file(), body(), 0);
        pending().publishInPlace();
        pending().file().close();
        replaced_.reset();
    }

private:
    void takeRights() {
        if (replaced_) pending().file().takeRightsOf(replaced_->status());
    }

    std::string path_;
    std::optional<SystemFile> replaced_;
};

}  // namespace

std::unique_ptr<SetFileChange> createdSetFile(const std::string& path) {
    requireName(path);
    requireFree(path);
    return std::make_unique<CreatedSetFile>(path);
}

std::unique_ptr<SetFileChange> replacedSetFile(const std::string& path) {
    requireName(path);
    const std::string real = withoutLinks(path);
    return std::make_unique<ReplacedSetFile>(real, path, ReplacedSetFile::lockThere(real, path));
}

void finishNewFile(SystemFile& file, SetFileBody& body, std::uint32_t flags) {
    // Both superblocks name the one directory, so that damage to one of them does no harm.
    const Superblock latest = body.finish(kFirstSequence + 1);
    Superblock earlier = latest;
    earlier.sequence = kFirstSequence;
    file.writeAt(0, encodeHeader({flags, {earlier, latest}}));
    file.sync();
}

}  // namespace zqpaths
