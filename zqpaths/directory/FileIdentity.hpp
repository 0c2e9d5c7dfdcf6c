#pragma once
// FileIdentity is what a file is told by, whatever leads to it.
//
//     walkDirectory(".", {.notTaken = filesOfSet("usr.zqp")}, ...);  // all but the set itself
//
// Threads: free functions without state.

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "zqpaths/Export.hpp"

namespace zqpaths {

struct FileIdentity {
    dev_t device;
    ino_t inode;
    std::string name;  // in its directory, for file systems that list it by another inode
};

/// The files of a set that are there: the one at its path, if there is one, and the one that a
/// writer at work is to put in its place.
ZQPATHS_EXPORT std::vector<FileIdentity> filesOfSet(const std::string& path);

/// What is at a path, also a directory or a symbolic link; nothing if there is nothing.
ZQPATHS_EXPORT std::optional<FileIdentity> fileAt(const std::string& path);

}  // namespace zqpaths
