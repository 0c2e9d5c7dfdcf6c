// Set files that are new: where there was none, or in the place of another.

#include <utility>

#include "zqpaths/file/NewFile.hpp"
#include "zqpaths/file/SetFileChange.hpp"

namespace zqpaths {
namespace {

constexpr std::uint64_t kFirstSequence = 1;

class NewSetFile final : public SetFileChange {
public:
    explicit NewSetFile(NewFile file)
        : file_(std::move(file)), body_(file_.file(), kPageSize, Directory{}) {}

    SetFileBody& body() noexcept override { return body_; }
    const std::shared_ptr<const SetFile>& committed() const noexcept override { return nothing_; }

    void commit() override {
        file_.commit([this](SystemFile& file) { finishNewFile(file, body_, 0); });
    }

private:
    std::shared_ptr<const SetFile> nothing_;
    NewFile file_;
    SetFileBody body_;
};

}  // namespace

std::unique_ptr<SetFileChange> createdSetFile(const std::string& path) {
    return std::make_unique<NewSetFile>(NewFile::created(path));
}

std::unique_ptr<SetFileChange> replacedSetFile(const std::string& path) {
    return std::make_unique<NewSetFile>(NewFile::replaced(path));
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
