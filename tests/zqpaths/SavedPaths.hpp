#pragma once
// What a set file holds, read segment by segment, for tests of what was written:
//
//     EXPECT_EQ(savedPaths(file), (std::vector<std::string>{"usr/bin/env"}));
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/file/SetFile.hpp"
#include "zqpaths/set/Segment.hpp"

namespace zqpaths {

inline std::vector<std::string> savedPaths(const std::string& file) {
    std::vector<std::string> paths;
    const auto opened = SetFile::open(file);
    std::uint64_t number = 1;
    for (const SegmentEntry& entry : opened->segments()) {
        Segment(opened, entry, number)
            .forEachPath({1, entry.pathCount},
                         [&](std::size_t, std::string_view path) { paths.emplace_back(path); });
        number += entry.pathCount;
    }
    return paths;
}

}  // namespace zqpaths
