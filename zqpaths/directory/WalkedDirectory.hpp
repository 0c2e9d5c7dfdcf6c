#pragma once
// WalkedDirectory is a directory that a walk has met: its name until it is read, then what is in
// it until that is reported.

#include <sys/types.h>

#include <cstddef>
#include <exception>
#include <string>
#include <utility>
#include <vector>

#include "zqpaths/directory/LeftOutNames.hpp"

namespace zqpaths {

struct WalkedDirectory {
    enum class State { kUnread, kBeingRead, kRead };

    WalkedDirectory(WalkedDirectory* directoryAbove, std::string ownName)
        : parent(directoryAbove),
          name(std::move(ownName)),
          depth(directoryAbove == nullptr ? 0 : directoryAbove->depth + 1) {}

    WalkedDirectory* const parent;  // none for the root
    const std::string name;         // in its parent; the root's whole path
    const std::size_t depth;        // directories above it, up to the root
    State state = State::kUnread;   // guarded by the walk's mutex

    // Set by the thread that reads it, before it is kRead.
    dev_t device = 0;
    ino_t inode = 0;
    std::vector<std::string> files;  // what is reported, in byte order
    LeftOutNames leftOut;
    int error = 0;  // of errno, if it could not be read, or not to its end
    const WalkedDirectory* sameAbove = nullptr;  // what a loop of links leads back to
    std::exception_ptr failure;                  // for the thread that walks

    std::size_t pathLength = 0;  // of its path with a separator; set when it is reported
};

}  // namespace zqpaths
