#pragma once
// Folders as a set holds them, component by component, as text.
//
// Threads: free functions without state.

#include <string>
#include <vector>

namespace zqpaths {

/// The bytes of a folder as they stand in front of its files, with the separator between; empty if
/// there are no components, or the one of paths without folder.
std::string folderText(const std::vector<std::u16string>& components);

}  // namespace zqpaths
