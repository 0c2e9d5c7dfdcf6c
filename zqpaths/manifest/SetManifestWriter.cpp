#include "zqpaths/manifest/SetManifestWriter.hpp"

#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <span>
#include <system_error>
#include <unordered_map>
#include <utility>
#include <vector>

#include "zqpaths/file/NewFile.hpp"
#include "zqpaths/manifest/SetManifest.hpp"
#include "zqpaths/set/OpenedSet.hpp"

namespace zqpaths {
namespace {

NewFile newFile(const std::string& file, SetManifestWriter::Mode mode) {
    return mode == SetManifestWriter::Mode::kReplace ? NewFile::replaced(file)
                                                     : NewFile::created(file);
}

/// The folder of a file as the system knows it, so that ways from one to another can be told.
/// Throws Error.
std::filesystem::path folderOf(const std::string& file) {
    const std::string folder = directoryOf(file);
    const std::unique_ptr<char, decltype(&std::free)> real(
        ::realpath(folder.empty() ? "." : folder.c_str(), nullptr), &std::free);
    if (!real && errno == ENOMEM) throw std::bad_alloc();
    if (!real) throw systemError(folder.empty() ? file : folder, errno);
    return real.get();
}

}  // namespace

class SetManifestWriter::Work {
public:
    Work(std::string name, Mode mode)
        : name_(std::move(name)),
          folder_(folderOf(withoutLinks(name_))),
          file_(newFile(name_, mode)) {}

    void addSet(const std::string& setFile) {
        const auto opened = OpenedSet::open(setFile);
        append(*opened, opened->manifestRows());
    }

    void addSegments(const std::string& setFile, std::uint64_t firstSegment,
                     std::uint64_t segmentCount) {
        const auto opened = OpenedSet::open(setFile);
        opened->requireSegments(firstSegment, segmentCount);
        append(*opened, opened->manifestRows(firstSegment, segmentCount));
    }

    std::uint64_t size() const noexcept { return size_; }

    void commit() {
        if (isCommitted_)
            throw Error(ErrorKind::kWrongUse, name_, "the writer has committed its sets already");
        const std::string text = encodeManifest(manifest_);
        file_.commit([&](SystemFile& file) {
            file.writeAt(0, std::as_bytes(std::span(text)));
            file.sync();
            // A folder beside it that was made for the set files is there before they are named.
            syncDirectoryOf(withoutLinks(name_), name_);
        });
        isCommitted_ = true;
    }

private:
    void append(const OpenedSet& set, const std::vector<ManifestRow>& rows) {
        const std::size_t fileCount = manifest_.files.size();
        const std::size_t rowCount = manifest_.rows.size();
        try {
            for (const ManifestRow& row : rows)
                manifest_.rows.push_back({placeOf(set, row.file), row.firstSegment,
                                          row.segmentCount, row.pathCount, row.goneCount});
        } catch (...) {
            for (std::size_t file = fileCount; file < manifest_.files.size(); ++file)
                places_.erase(manifest_.files[file].path);
            manifest_.files.resize(fileCount);
            manifest_.rows.resize(rowCount);
            throw;
        }
        for (const ManifestRow& row : rows) size_ += row.pathCount;
    }

    std::string relativeName(const std::string& setFile) const {
        const std::filesystem::path name(setFile);
        return (folderOf(setFile) / name.filename()).lexically_relative(folder_).string();
    }

    std::size_t placeOf(const OpenedSet& set, std::size_t file) {
        const std::string name = relativeName(set.fileName(file));
        const std::uint64_t sum = set.fileSum(file);
        if (const auto there = places_.find(name); there != places_.end()) {
            if (manifest_.files[there->second].sum == sum) return there->second;
            throw Error(ErrorKind::kSystem, set.fileName(file), "is changed by another process");
        }
        // A set file that the manifest took the place of would be gone with all its paths.
        std::error_code isNotThere;
        if (std::filesystem::equivalent(set.fileName(file), name_, isNotThere))
            throw Error(ErrorKind::kWrongUse, name_, "cannot be a part of itself");
        manifest_.files.push_back({name, sum});
        try {
            places_.emplace(name, manifest_.files.size() - 1);
        } catch (...) {
            manifest_.files.pop_back();
            throw;
        }
        return manifest_.files.size() - 1;
    }

    std::string name_;
    std::filesystem::path folder_;
    NewFile file_;
    SetManifest manifest_;
    std::unordered_map<std::string, std::size_t> places_;  // of files
    std::uint64_t size_ = 0;
    bool isCommitted_ = false;
};

SetManifestWriter::SetManifestWriter(std::string file, Mode mode)
    : work_(std::make_unique<Work>(std::move(file), mode)) {}

SetManifestWriter::SetManifestWriter(SetManifestWriter&&) noexcept = default;
SetManifestWriter& SetManifestWriter::operator=(SetManifestWriter&&) noexcept = default;
SetManifestWriter::~SetManifestWriter() = default;

void SetManifestWriter::addSet(const std::string& setFile) {
    assert(work_);  // a writer that was moved from takes nothing
    work_->addSet(setFile);
}

void SetManifestWriter::addSegments(const std::string& setFile, std::uint64_t firstSegment,
                                    std::uint64_t segmentCount) {
    assert(work_);
    work_->addSegments(setFile, firstSegment, segmentCount);
}

std::uint64_t SetManifestWriter::size() const noexcept {
    return work_ ? work_->size() : 0;
}

void SetManifestWriter::commit() {
    assert(work_);
    work_->commit();
}

}  // namespace zqpaths
