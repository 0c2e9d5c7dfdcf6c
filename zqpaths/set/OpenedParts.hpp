#pragma once
// OpenedParts opens the parts of a set of sets when they are first needed, and keeps those opened
// that were needed last, kMostParts at most: the files of a large set are more than a process may
// have open.
//
//     const OpenedParts opened("all.zqs", manifest, parts);
//     const PinnedPart part = opened.pin(7);
//
// Threads: any number of threads may pin parts. A file is opened by one of them while the others do
// without it.

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "compressedpaths/store/Lazy.hpp"
#include "zqpaths/manifest/SetManifest.hpp"
#include "zqpaths/set/OpenedPart.hpp"
#include "zqpaths/set/SetParts.hpp"

namespace zqpaths {

class OpenedParts {
public:
    /// Parts that are kept opened; fewer where the process may have few files open.
    static constexpr std::size_t kMostParts = 1024;

    /// `name` is the file of the manifest. `parts` outlives it.
    OpenedParts(std::string name, std::vector<ManifestFile> files, const SetParts& parts);

    /// The part at a place. Throws Error: kNotFound, kSystem, kNotASet, kDamaged, with the names of
    /// manifest and file. One system call if it is opened; else O(segments of the file).
    PinnedPart pin(std::size_t part) const;

    std::size_t fileCount() const noexcept { return files_.size(); }
    const ManifestFile& operator[](std::size_t file) const noexcept { return files_[file]; }

    /// A file as people know it: by the way to the manifest that they gave, unless that is a link.
    std::string nameOf(std::size_t file) const;

    /// One of the files, opened. Throws as pin.
    std::shared_ptr<const SetFile> file(std::size_t file) const;

private:
    using Opened = compressedpaths::Lazy<std::shared_ptr<const OpenedPart>>;
    struct Kept {
        std::size_t part;
        std::shared_ptr<Opened> opened;
    };

    std::shared_ptr<Opened> keep(std::size_t part) const;
    std::shared_ptr<const OpenedPart> open(std::size_t part) const;
    std::shared_ptr<const SetFile> mapped(std::size_t file) const;

    /// What `read()` gives; Error that it throws has the name of the manifest before its text.
    template <class Read>
    auto naming(Read read) const {
        try {
            return read();
        } catch (const Error& error) {
            throw Error(error.kind(), name_, error.what(), error.systemCode());
        }
    }

    std::string name_;
    std::string folder_;       // of the manifest, wherever the process goes
    std::string shownFolder_;  // the same, as people know it
    std::vector<ManifestFile> files_;
    const SetParts& parts_;
    std::size_t mostParts_;

    mutable std::mutex mutex_;
    mutable std::list<Kept> kept_;  // the one needed last comes first
    mutable std::unordered_map<std::size_t, std::list<Kept>::iterator> places_;     // of parts
    mutable std::unordered_map<std::size_t, std::weak_ptr<const SetFile>> mapped_;  // files
};

}  // namespace zqpaths
