#include "zqpaths/file/NewFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <string_view>
#include <utility>

#include "zqpaths/Error.hpp"
#include "zqpaths/file/FileLock.hpp"
#include "zqpaths/file/SetFileLayout.hpp"
#include "zqpaths/manifest/SetManifest.hpp"

namespace zqpaths {
namespace {

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
    const std::string_view text(reinterpret_cast<const char*>(front.data()), frontSize);
    if (!isOfOurs(std::span(front).first(frontSize), std::span(end).first(endRead)) &&
        !beginsLikeManifest(text))
        throw Error(ErrorKind::kNotASet, file.name(), kIsNoSet);
}

/// The file that is there, locked, so that nobody appends to it meanwhile what would then be gone.
std::optional<SystemFile> lockReplaced(const std::string& path, const std::string& name) {
    std::optional<SystemFile> there = openLocked(path, O_RDONLY | O_NONBLOCK, name, kWriterWait);
    if (there) requireReplaceable(*there);
    return there;
}

}  // namespace

NewFile::NewFile(std::string path, const std::string& name, bool isReplacing,
                 std::optional<SystemFile> there)
    : path_(std::move(path)),
      isReplacing_(isReplacing),
      pending_(std::make_unique<PendingFile>(path_, name, kWriterWait)),
      there_(std::move(there)) {}

NewFile NewFile::created(const std::string& path) {
    requireName(path);
    requireFree(path);
    NewFile file(path, path, false, std::nullopt);
    requireFree(path);  // we may have waited for one who made it
    return file;
}

NewFile NewFile::replaced(const std::string& path) {
    requireName(path);
    const std::string real = withoutLinks(path);
    NewFile file(real, path, true, lockReplaced(real, path));
    file.takeRights();
    return file;
}

void NewFile::commit(const std::function<void(SystemFile& file)>& finish) {
    if (isReplacing_ && (!there_ || !there_->isAt(path_))) {
        there_ = lockReplaced(path_, file().name());
        takeRights();
    }
    finish(file());
    if (isReplacing_)
        pending_->publishInPlace();
    else
        pending_->publish();
    file().close();
    there_.reset();
}

void NewFile::takeRights() {
    if (there_) file().takeRightsOf(there_->status());
}

}  // namespace zqpaths
