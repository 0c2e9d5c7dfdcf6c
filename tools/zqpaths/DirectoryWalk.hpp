#pragma once
// A walk over all that a directory holds, at any depth:
//
//     walkDirectory("/usr", [](std::string_view path) { ... },                // "/usr/bin/x"
//                   [](std::string_view path, std::string_view reason) { ... });
//
// What is no directory is reported, in each directory in byte order and before its
// sub-directories, which follow in byte order. Symbolic links are reported and not followed, except
// for the root itself. Directories are opened relative to one another, so that no path is too long,
// and few are open at a time, so that none is too deep.
//
// Threads: walks may run side by side; the callbacks are called by the thread that walks.

#include <functional>
#include <string>
#include <string_view>

namespace zqpaths {

/// Takes the path of something that is no directory: the root as given, a separator unless the
/// root ends with one, and the names from there. The view is valid during the call.
using PathVisitor = std::function<void(std::string_view path)>;

/// Takes the path of what could not be read, and why in the system's words.
using ErrorVisitor = std::function<void(std::string_view path, std::string_view reason)>;

/// Walks `root`. What cannot be read goes to `onError`, the walk goes on behind it. Throws
/// std::bad_alloc and what the callbacks throw. O(entries log entries of one directory).
void walkDirectory(const std::string& root, const PathVisitor& onPath, const ErrorVisitor& onError);

}  // namespace zqpaths
