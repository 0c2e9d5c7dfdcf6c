#pragma once
// SegmentBuilder makes a segment of paths as bytes: counts their characters, makes a code, codes on
// several threads, adds and writes the image or the packed form.
//
//     const BuiltSegment segment = buildSegment(paths, SegmentForm::kImage, threads);
//     writer.append(segment.view());
//
// Threads: a free function without state; it starts threads and joins them.

#include <cstdint>

#include "compressedpaths/store/FlatArray.hpp"
#include "zqpaths/WorkWatcher.hpp"
#include "zqpaths/file/SetFileWriter.hpp"
#include "zqpaths/set/CollectedPaths.hpp"

namespace zqpaths {

struct BuiltSegment {
    SegmentForm form;
    std::uint64_t pathCount;
    std::uint64_t textSize;
    std::uint64_t treeStringSize;
    compressedpaths::FlatArray<std::uint8_t> bytes;

    SegmentBytes view() const noexcept;
};

/// A segment of these paths, at least one; the same bytes whatever the threads. Throws
/// std::bad_alloc, and the core's SetTooLargeException for a path of some gigabytes. A watcher, if
/// there is one, is told of the paths that have been coded. O(bytes).
BuiltSegment buildSegment(const CollectedPaths& paths, SegmentForm form, unsigned threads,
                          const WorkWatcher& watch = {});

}  // namespace zqpaths
