#pragma once
// A path, cut into the components of its folder and its file name, and joined again:
//
//     cutPath("/usr/bin/x")   // "/", "usr", "bin" | "x"
//     cutPath("a/b//c/d")     // "a/", "b/", "c"   | "d"
//     cutPath("a/b/")         // "a/"              | "b/"
//     cutPath("/")            // kNoFolder         | "/"
//
// The first component carries all separators that follow it; so a path from the root begins with a
// component of its own. Later ones are a name and the separators beyond one. Separators at the very
// end belong to the file name. A path without folder has the component kNoFolder, which no path
// can hold. Joining gives the same bytes for every path that is not empty and holds no NUL.
//
// The folder's text, all that stands before the file name, decides its components: neighbouring
// paths can be grouped by it without cutting them.
//
// Threads: free functions without state. The views belong to the text that was cut.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/Export.hpp"

namespace zqpaths {

inline constexpr char kSeparator = '/';
inline constexpr std::string_view kNoFolder{"\0", 1};  // the one component of no folder

struct CutPath {
    std::vector<std::string_view> folder;  // at least one, none of them empty
    std::string_view fileName;             // not empty
};

/// The components of a path that is not empty and holds no NUL. O(bytes).
CutPath cutPath(std::string_view path);

/// The path that has these components. O(bytes).
std::string joinPath(const std::vector<std::string_view>& folder, std::string_view fileName);

/// The bytes of a path before its file name; 0 if it has no folder. O(bytes of the file name).
ZQPATHS_EXPORT std::size_t folderLength(std::string_view path) noexcept;

/// Appends the components of a folder, given as the first folderLength(path) bytes of a path.
/// O(bytes).
void cutFolder(std::string_view folderText, std::vector<std::string_view>& components);

/// The next component of a folder's text, which is taken off its front; of no folder, kNoFolder.
/// `isFirst` says whether it is the folder's first. O(bytes of the component).
std::string_view takeComponent(std::string_view& folderText, bool isFirst);

/// What two folders have in common at the front: so many components, in so many bytes of the text
/// of both.
struct SharedFolder {
    std::size_t components;
    std::size_t length;

    bool operator==(const SharedFolder&) const = default;
};

/// O(bytes in common). No folder has nothing in common with any.
SharedFolder sharedFolder(std::string_view folderText, std::string_view other);

/// The path of components that stand one after the other, separators between all but the first two:
/// without kNoFolder at the front, if that is the folder. O(1).
std::string_view pathOfComponents(std::string_view text) noexcept;

/// Appends a component to the text of its folder; the first one to an empty text.
/// Amortised O(bytes of the component).
void appendToFolder(std::string_view component, std::string& folderText);

/// Appends a name to the path of its folder, with a separator between them where the path does not
/// end with one; to an empty path the name alone. Amortised O(bytes of the name).
ZQPATHS_EXPORT void appendName(std::string_view name, std::string& path);

/// The path of a folder with one separator where several stand together, and none at its end:
/// "/usr/lib" of "//usr//lib/". The root stays "/". O(bytes).
ZQPATHS_EXPORT std::string plainFolder(std::string_view folder);

}  // namespace zqpaths
