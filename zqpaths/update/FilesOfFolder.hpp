#pragma once
// The files that a set has right in a folder, found by the folder, not by going through the set:
//
//     for (const FileOfFolder& file : filesOfFolder(opened, "/usr/bin/")) ...  // by their names
//
// The folder is that of the text, byte for byte: with as many separators, as a walk has given it.
//
// Threads: a free function without state.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/set/OpenedSet.hpp"

namespace zqpaths {

struct FileOfFolder {
    std::string name;
    std::uint64_t number;
};

/// In the order of names, those of one name in the order of numbers. `folder` ends with a
/// separator. Throws Error kDamaged. O(components * log folders + files log files) a segment.
std::vector<FileOfFolder> filesOfFolder(const OpenedSet& set, std::string_view folder);

}  // namespace zqpaths
