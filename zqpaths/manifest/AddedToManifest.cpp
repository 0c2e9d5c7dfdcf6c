// Sets of sets that grow: what is added stands in a set file of its own, beside those that are
// there, and the manifest that names it takes the place of the one that did not.
//
//     all.zqs                 one more file, one more row
//     all.zqs.d/added-1.zqp   the paths that were added

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "zqpaths/Error.hpp"
#include "zqpaths/file/SetFileChange.hpp"
#include "zqpaths/manifest/SetManifest.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"
#include "zqpaths/set/OpenedSet.hpp"

namespace zqpaths {
namespace {

/// A folder that is there while it is needed: one that was made for nothing is gone again.
class FolderBeside {
public:
    explicit FolderBeside(std::string path, const std::string& name) : path_(std::move(path)) {
        constexpr mode_t kMode = 0777;  // less what the mask of the process takes away
        if (::mkdir(path_.c_str(), kMode) != 0 && errno != EEXIST) throw systemError(name, errno);
    }
    FolderBeside(const FolderBeside&) = delete;
    FolderBeside& operator=(const FolderBeside&) = delete;
    ~FolderBeside() { ::rmdir(path_.c_str()); }  // which leaves one that has files

    /// A name in it that nothing has.
    std::string freeName() const {
        struct stat status {};
        for (std::uint64_t number = 1;; ++number) {
            std::string name = path_ + "/added-" + std::to_string(number) + ".zqp";
            if (::lstat(name.c_str(), &status) != 0) return name;
        }
    }

private:
    std::string path_;
};

class AddedToManifest final : public SetFileChange {
public:
    /// Whoever else adds paths waits from here on.
    explicit AddedToManifest(const std::string& name)
        : name_(name),
          manifest_(std::in_place, name, SetManifestWriter::Mode::kReplace),
          pathsBefore_(pathsTaken()),
          folder_(withoutLinks(name) + ".d", name),
          fileName_(folder_.freeName()),
          file_(createdSetFile(fileName_)) {}

    SetFileBody& body() noexcept override { return file_->body(); }
    const std::shared_ptr<const SetFile>& committed() const noexcept override {
        return file_->committed();
    }
    std::uint64_t pathsBefore() const noexcept override { return pathsBefore_; }

    /// The set file is whole before the manifest names it. One that the manifest does not name,
    /// because a process died in between, is in nobody's way.
    void commit() override {
        if (body().directory().segments.empty()) {
            file_.reset();
            manifest_.reset();  // others may add
            return;
        }
        try {
            file_->commit();
            manifest_->addSet(fileName_);
            manifest_->commit();
        } catch (...) {
            if (!isAdded()) ::unlink(fileName_.c_str());
            throw;
        }
    }

private:
    /// Takes the rows that are there.
    std::uint64_t pathsTaken() {
        manifest_->addSet(name_);
        return manifest_->size();
    }

    /// A new manifest can be in its place although the system could not tell that it will last.
    bool isAdded() const {
        try {
            return OpenedSet::open(name_)->size() != pathsBefore_;
        } catch (const Error&) {
            return true;  // which nobody knows
        }
    }

    std::string name_;
    std::optional<SetManifestWriter> manifest_;
    std::uint64_t pathsBefore_;
    FolderBeside folder_;
    std::string fileName_;
    std::unique_ptr<SetFileChange> file_;
};

bool isManifest(const std::string& path) {
    const SystemFile file = SystemFile::tryOpen(path, O_RDONLY | O_NONBLOCK, path);
    if (!file.isOpen() && errno != ENOENT) throw systemError(path, errno);
    if (!file.isOpen() || !S_ISREG(file.status().st_mode)) return false;
    std::array<std::byte, kTellingFront> front{};
    const std::size_t size = file.readAt(0, front);
    return beginsLikeManifest({reinterpret_cast<const char*>(front.data()), size});
}

}  // namespace

std::unique_ptr<SetFileChange> addedToManifest(const std::string& path) {
    if (!isManifest(path)) return nullptr;
    return std::make_unique<AddedToManifest>(path);
}

}  // namespace zqpaths
