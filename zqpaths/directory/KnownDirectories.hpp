#pragma once
// What a scan that was made before says about a walk that is to be made now: which directories are
// as they were, by their times, so that the walk need not read them.
//
//     const KnownDirectories known = lookAtDirectories(scan, options, [] {});
//     walkDirectory(scan.root, options, visitors, &known);
//
// Threads: never changes; any number of threads may read it.

#include <cstdint>
#include <functional>
#include <vector>

#include "zqpaths/Export.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"
#include "zqpaths/directory/ScanRecord.hpp"

namespace zqpaths {

struct KnownDirectories {
    enum class Look : std::uint8_t {
        kNowhere,  // it is as it was, and so is all below it
        kBelow,    // it is, but not all below it
        kHere,     // it is not, or nobody can tell from afar
    };

    const Scan& scan;
    std::vector<Look> looks;  // one for each directory of the scan
};

/// Compares the stamps of all directories of a scan with those that they have now, on as many
/// threads as the options say. What cannot be reached by a path of the system, or does not say why,
/// is for the walk to look at. Calls `onStep` on this thread each thousand or so. Throws
/// std::bad_alloc and what that throws. O(directories).
ZQPATHS_EXPORT KnownDirectories lookAtDirectories(const Scan& scan, const WalkOptions& options,
                                                  const std::function<void()>& onStep);

}  // namespace zqpaths
