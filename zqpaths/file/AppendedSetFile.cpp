// Set files that grow. What is committed stays as it is; the new part stands after it, and counts
// once a superblock names it.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <optional>
#include <utility>

#include "zqpaths/Error.hpp"
#include "zqpaths/file/FileLock.hpp"
#include "zqpaths/file/PendingFile.hpp"
#include "zqpaths/file/SetFileChange.hpp"

namespace zqpaths {
namespace {

class AppendedSetFile final : public SetFileChange {
public:
    explicit AppendedSetFile(const std::string& name);
    ~AppendedSetFile() override;

    SetFileBody& body() noexcept override { return *body_; }
    const std::shared_ptr<const SetFile>& committed() const noexcept override { return committed_; }
    void commit() override;

private:
    void lock(const std::string& name);
    void requireGrowth() const;
    unsigned repairedSlot();
    void cut();
    bool rewrite();
    void commitHere();
    void writeSuperblock(const Superblock& superblock);

    const CommittedState& state() const noexcept { return committed_->state(); }

    std::string path_;
    SystemFile file_;
    std::shared_ptr<const SetFile> committed_;
    std::optional<SetFileBody> body_;
    unsigned latestSlot_ = 0;  // the one that names what is committed
    bool isTailOurs_ = false;  // what is past the committed end may be cut
    pid_t process_ = ::getpid();
};

AppendedSetFile::AppendedSetFile(const std::string& name) : path_(withoutLinks(name)) {
    PendingFile::removeLeft(path_);
    lock(name);
    requireGrowth();
    latestSlot_ = repairedSlot();
    isTailOurs_ = true;
    cut();
    body_.emplace(file_, committed_->size(), state().directory);
}

AppendedSetFile::~AppendedSetFile() {
    if (!isTailOurs_ || process_ != ::getpid()) return;
    try {
        cut();
    } catch (const Error&) {
        return;  // the next writer cuts it
    }
}

void AppendedSetFile::lock(const std::string& name) {
    do {
        std::optional<SystemFile> there = openLocked(path_, O_RDWR | O_NONBLOCK, name, kWriterWait);
        if (!there) throw systemError(name, ENOENT);
        file_ = std::move(*there);
        committed_ = SetFile::open(path_, name);
    } while (!file_.isAt(path_));  // or what was opened is not what is locked
}

/// Throws Error if what was committed last cannot be told for sure, so that a part of it would be
/// cut off, or cannot be written by this version.
void AppendedSetFile::requireGrowth() const {
    if (!canBeRewritten(state().directory))
        throw Error(ErrorKind::kNotASet, file_.name(),
                    "is a set that needs a newer version of this program to be added to");
    const auto& superblocks = state().header.superblocks;
    const bool isOneDamaged = std::any_of(superblocks.begin(), superblocks.end(),
                                          [](const auto& superblock) { return !superblock; });
    const bool hasTail = file_.size() > committed_->size();
    const bool isEnded = state().superblock.sequence >= kMaxSequence;
    if (!state().isLatest || (isOneDamaged && state().slot && hasTail) || isEnded)
        throw Error(ErrorKind::kDamaged, file_.name(),
                    "what was added last is damaged; save the rest as a new set");
}

/// The slot with the superblock that counts. One that is found at the end of the file alone is put
/// into a damaged slot first: it would not be found any more once the file has grown.
unsigned AppendedSetFile::repairedSlot() {
    if (state().slot) return *state().slot;
    const auto& superblocks = state().header.superblocks;
    const auto* const damaged = std::find(superblocks.begin(), superblocks.end(), std::nullopt);
    const auto slot = static_cast<unsigned>(damaged - superblocks.begin());
    file_.writeAt(kSuperblockOffsets[slot], encodeSuperblock(state().superblock));
    file_.sync();
    return slot;
}

void AppendedSetFile::cut() {
    if (file_.size() > committed_->size()) file_.truncate(committed_->size());
}

void AppendedSetFile::commit() {
    if (body_->directory() == state().directory)
        cut();
    else if (!body_->isMostlyDead() || !rewrite())
        commitHere();
    isTailOurs_ = false;
    file_.close();
}

/// Writes segments and blocks to a new file, which takes the place of this one; false if that
/// cannot be done, since the old file serves as well.
bool AppendedSetFile::rewrite() {
    std::optional<PendingFile> pending;
    try {
        pending.emplace(path_, file_.name(), std::chrono::milliseconds{0});
        pending->file().takeRightsOf(file_.status());
        SetFileBody compacted(pending->file(), kPageSize, {{}, state().directory.unknown});
        compacted.copyAll(file_, body_->directory());
        finishNewFile(pending->file(), compacted, state().header.flags);
        pending->publishInPlace();
    } catch (const Error&) {
        if (pending && pending->isPublished()) throw;
        return false;
    }
    return true;
}

void AppendedSetFile::commitHere() {
    const Superblock next = body_->finish(state().superblock.sequence + 1);
    file_.sync();
    writeSuperblock(next);
}

/// Writes the superblock into the slot that does not count, then it does. If the device refuses to
/// keep it, what stood there is put back.
void AppendedSetFile::writeSuperblock(const Superblock& superblock) {
    const std::size_t offset = kSuperblockOffsets[1 - latestSlot_];
    std::array<std::byte, kSuperblockSize> former{};
    file_.readAt(offset, former);
    isTailOurs_ = false;
    try {
        file_.writeAt(offset, encodeSuperblock(superblock));
        file_.sync();
    } catch (const Error&) {
        try {
            file_.writeAt(offset, former);
            file_.sync();
            isTailOurs_ = true;
        } catch (const Error&) {
            // The device knows which of the two it has. Both are whole: nothing is cut.
            isTailOurs_ = false;
        }
        throw;
    }
}

}  // namespace

std::unique_ptr<SetFileChange> appendedSetFile(const std::string& path) {
    return std::make_unique<AppendedSetFile>(path);
}

}  // namespace zqpaths
