#pragma once
// SetManifestWriter makes a set of sets: a small file that names set files, whose numbers run
// through. None of their bytes is read but their directories.
//
//     zqpaths::SetManifestWriter writer("all.zqs");
//     for (const std::string& file : files) writer.addSet(file);
//     writer.commit();  // now PathSet::open("all.zqs") has the paths of all, in this order
//
// The set files stay where they are; the manifest has their names relative to the folder that it is
// in, so that all of them together can be moved. What is a set of sets itself is taken apart: its
// rows are taken.
//
// Threads: a writer belongs to one thread at a time.

#include <cstdint>
#include <memory>
#include <string>

#include "zqpaths/Error.hpp"
#include "zqpaths/Export.hpp"

namespace zqpaths {

class ZQPATHS_EXPORT SetManifestWriter {
public:
    enum class Mode {
        kCreate,   // a new file; refuses one that is there
        kReplace,  // a new file, in the place of a set, or a set of sets, that may be there
    };

    /// Throws Error: kExists, kNotFound, kNotASet, kHeld, kNoSpace, kSystem.
    explicit SetManifestWriter(std::string file, Mode mode = Mode::kCreate);
    SetManifestWriter(SetManifestWriter&&) noexcept;
    SetManifestWriter& operator=(SetManifestWriter&&) noexcept;
    ~SetManifestWriter();  // discards what is not committed

    /// Appends all paths of a set file as it is now, or of a set of sets. One without paths adds
    /// nothing. Throws Error as PathSet::open; the writer is then as it was. O(segments).
    void addSet(const std::string& setFile);

    /// Appends the paths of some neighbouring segments of a set file, the first of which is at a
    /// place from 0 on. Throws as addSet, kWrongUse if it has fewer.
    void addSegments(const std::string& setFile, std::uint64_t firstSegment,
                     std::uint64_t segmentCount);

    /// Paths that the set of sets will have.
    std::uint64_t size() const noexcept;

    /// Puts the file in its place, on the disk when it returns. Once. Throws Error kExists if
    /// another has made the file meanwhile, kNoSpace, kSystem; what was there is then as it was.
    /// O(rows).
    void commit();

private:
    class Work;
    std::unique_ptr<Work> work_;
};

}  // namespace zqpaths
