#pragma once
// The scans that a set file holds, of a set that is opened and of one that is written.
//
//     recordScans(writer, {std::move(scan)});  // counts from the writer's commit on
//     for (const Scan& scan : scansOf(set)) ...
//
// Threads: free functions without state.

#include <vector>

#include "zqpaths/Export.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/directory/ScanRecord.hpp"

namespace zqpaths {

/// The scans of a set, which outlives them; none if it was made of other things. Throw Error
/// kDamaged. O(directories).
ZQPATHS_EXPORT std::vector<Scan> scansOf(const PathSet& set);
ZQPATHS_EXPORT std::vector<EncodedScan> encodedScansOf(const PathSet& set);

/// Has the next commit write these scans, in the place of those of the same root; others stay.
ZQPATHS_EXPORT void recordScans(PathSetWriter& writer, std::vector<EncodedScan> scans);

}  // namespace zqpaths
