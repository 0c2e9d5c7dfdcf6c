#pragma once
// What the page of a report knows of a set, as JSON that can stand in a script element. docs of its
// fields stand beside their writers; folders.js reads them.
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "zqpaths/PathSet.hpp"

namespace zqpaths::program {

/// How many folders a page has at most: the largest, some 30 bytes each and their names. What is in
/// the others counts in the folders that they are in.
inline constexpr std::size_t kMostFolders = 20'000;

/// Calls `step` for each path that is read, at most twice. Throws Error as PathSet::forEach.
/// O(bytes); memory as FolderTotals.
std::string reportData(const PathSet& set, std::size_t folderLimit,
                       const std::function<void()>& step);

/// JSON in which no character means anything to who reads the page: <, > and & are written as
/// \u003C and so on, and so are the separators of lines that only some take for one.
std::string withoutMarkup(std::string_view json);

}  // namespace zqpaths::program
