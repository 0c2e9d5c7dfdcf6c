#pragma once
// What a set file holds, for tests of what was written, read segment by segment, or as who opens
// the set is told:
//
//     EXPECT_EQ(savedPaths(file), (std::vector<std::string>{"usr/bin/env"}));
//     EXPECT_EQ(answeredPaths(file), (std::vector<std::string>{"usr/bin/env", "(gone)"}));
//
// Threads: free functions without state.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/PathSet.hpp"
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

/// All paths of a set or a set of sets, those that are gone in parentheses; nothing if there is no
/// set. Throws Error if it cannot be opened.
inline std::optional<std::vector<std::string>> answeredPaths(const std::string& file) {
    if (!std::filesystem::exists(file)) return std::nullopt;
    const PathSet set = PathSet::open(file);
    std::vector<std::string> paths;
    set.forEach([&](std::uint64_t number, std::string_view path) {
        paths.emplace_back(path);
        if (set.isGone(number)) paths.back() = "(" + paths.back() + ")";
        return true;
    });
    return paths;
}

/// Fails the test that asks if the set says of itself that it is damaged.
inline void expectWhole(const std::string& file) {
    for (const Error& damage : PathSet::open(file).verify()) ADD_FAILURE() << damage.what();
}

}  // namespace zqpaths
