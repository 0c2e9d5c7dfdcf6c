#pragma once
// Fields of a path: what can be printed of it, in which order one likes. Of path 7,
// "/usr/lib/libz.so.1":
//
//     number     7
//     path       /usr/lib/libz.so.1
//     folder     /usr/lib/           all before the last name, as the path gives it
//     name       libz.so.1           folder and name together are the path
//     extension  1                   after the last dot of the name
//
// Dots at the front of a name begin no extension, and one at its end neither: .bashrc and "a." have
// none. Separators at the end of a path belong to its name and not to the extension: that of
// "a.d/" is "d".
//
// Threads: free functions without state.

#include <string>
#include <string_view>
#include <vector>

namespace zqpaths::program {

enum class PathField { kNumber, kPath, kFolder, kName, kExtension };

using PathFields = std::vector<PathField>;

std::string_view nameOf(PathField field) noexcept;

/// Fields whose names are given, separated by commas: at least one, each at most once. Throws
/// Failure kFailed.
PathFields parsePathFields(std::string_view names);

/// What a path has in a field other than its number; nothing where it has no extension. The view
/// belongs to the path. O(bytes of the name).
std::string_view partOf(PathField field, std::string_view path) noexcept;

}  // namespace zqpaths::program
