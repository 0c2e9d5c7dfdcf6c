#include "tools/zqpaths/sets/SetRoots.hpp"

#include <algorithm>
#include <optional>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sources/DirectorySource.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/directory/ScanOptions.hpp"
#include "zqpaths/update/SetUpdate.hpp"

namespace zqpaths::program {
namespace {

/// The scan of a directory, or of the innermost one that it is in, by their names; null if there is
/// none.
const Scan* scanOf(const std::string& directory, const std::vector<Scan>& scans) {
    const std::string folder = folderOfRoot(directory);
    const Scan* found = nullptr;
    for (const Scan& scan : scans)
        if (folder.starts_with(folderOfRoot(scan.root)) &&
            (found == nullptr || scan.root.size() > found->root.size()))
            found = &scan;
    return found;
}

/// How the directories of a scan are read again.
class Reading {
public:
    Reading(const std::string& set, const SourceOptions& source)
        : set_(set), given_(walkOptionsOf(source)) {
        given_.notTaken = filesOfSet(set);
    }

    const WalkOptions& given() const noexcept { return given_; }

    WalkOptions as(const Scan& scan) const {
        const ScanOptions given = scanOptionsOf(given_);
        if (!given.empty() && given != scan.options)
            throw failureAt(scan.root, "was read with " + printableText(textOf(scan.options)) +
                                           " for " + printablePath(set_) +
                                           ", and is read so again");
        try {
            WalkOptions options = zqpaths::walkOptionsOf(scan.options, given_.jobs);
            options.notTaken = given_.notTaken;
            return options;
        } catch (const Error& error) {
            throw failureAt(set_, error.what());
        }
    }

private:
    const std::string& set_;
    WalkOptions given_;
};

}  // namespace

std::vector<SetRoot> rootsOf(const std::string& set, const std::vector<Scan>& scans,
                             const SourceOptions& source) {
    const Reading reading(set, source);
    std::vector<SetRoot> roots;
    if (source.directories.empty()) {
        roots.reserve(scans.size());
        for (const Scan& scan : scans) roots.push_back({scan.root, reading.as(scan), &scan});
        if (roots.empty()) throw failureAt(set, "was not made of directories; DIR is required");
        return roots;
    }
    for (const std::string& directory : source.directories) {
        const Scan* const scan = scanOf(directory, scans);
        const bool isOwn = scan != nullptr && folderOfRoot(scan->root) == folderOfRoot(directory);
        if (!isOwn) requireDirectory(directory);
        if (isOwn)
            roots.push_back({scan->root, reading.as(*scan), scan});
        else if (scan != nullptr)
            roots.push_back({directory, reading.as(*scan), nullptr, true});
        else
            roots.push_back({directory, reading.given()});
    }
    return roots;
}

std::vector<std::string> allRoots(const std::vector<Scan>& scans,
                                  const std::vector<SetRoot>& roots) {
    std::vector<std::string> all;
    all.reserve(scans.size() + roots.size());
    for (const Scan& scan : scans) all.push_back(scan.root);
    for (const SetRoot& root : roots) all.push_back(root.path);
    return all;
}

}  // namespace zqpaths::program
