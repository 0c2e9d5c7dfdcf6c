#pragma once
// A set of sets as text: which set files it has, and whose segments follow each other in the order
// of the numbers. docs/zqs.md describes the form, which is JSON; this is its one reader and its one
// writer. It knows nothing of files of the system.
//
//     const SetManifest manifest = decodeManifest(text);
//     for (const ManifestRow& row : manifest.rows) use(manifest.files[row.file].path,
//     row.pathCount);
//
// Errors have no place in their text: who knows the file puts its name before them.
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zqpaths {

struct ManifestFile {
    std::string path;   // relative to the folder of the manifest, or absolute
    std::uint64_t sum;  // of its directory: PathSet::fingerprint()

    bool operator==(const ManifestFile&) const = default;
};

/// Neighbouring segments of one of the files. Counts are at least one, but for that of gone paths.
struct ManifestRow {
    std::size_t file;            // its place
    std::uint64_t firstSegment;  // the place of the first one in the file
    std::uint64_t segmentCount;
    std::uint64_t pathCount;
    std::uint64_t goneCount;

    bool operator==(const ManifestRow&) const = default;
};

struct SetManifest {
    std::vector<ManifestFile> files;
    std::vector<ManifestRow> rows;  // in the order of the numbers

    bool operator==(const SetManifest&) const = default;
};

/// Numbers of a set of sets stay below it, as do those of its segments.
inline constexpr std::uint64_t kMaxManifestCount = std::uint64_t{1} << 62;

/// What a text says. Throws Error kNotASet if it is no manifest, or one that needs a later version;
/// kDamaged if it says what cannot be. O(text).
SetManifest decodeManifest(std::string_view text);

/// The text that says it, one row a line. O(manifest).
std::string encodeManifest(const SetManifest& manifest);

/// True if a file that begins so is a manifest, whole or damaged: whatever else there is after the
/// name of the member that all of them begin with.
bool beginsLikeManifest(std::string_view front) noexcept;

/// Tells sets of sets of other paths, files or orders apart, as PathSet::fingerprint says. O(rows).
std::uint64_t fingerprintOf(const SetManifest& manifest);

}  // namespace zqpaths
