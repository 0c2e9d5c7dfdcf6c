#pragma once
// WalkedDirectory is a directory that a walk has met: its name until it is read, then what is in
// it until that is reported. Where much is known, one also stands for neighbours that the walk does
// not go into, since they are as they were.

#include <cstddef>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zqpaths/directory/LeftOutNames.hpp"
#include "zqpaths/directory/ScanRecord.hpp"

namespace zqpaths {

struct WalkedDirectory {
    enum class State { kUnread, kBeingRead, kRead };

    WalkedDirectory(WalkedDirectory* directoryAbove, std::string ownName)
        : parent(directoryAbove),
          name(std::move(ownName)),
          depth(directoryAbove == nullptr ? 0 : directoryAbove->depth + 1) {}

    /// Stands for those from one place of a known scan up to the one before another.
    WalkedDirectory(WalkedDirectory* directoryAbove, std::uint32_t first, std::uint32_t end)
        : parent(directoryAbove),
          depth(directoryAbove->depth + 1),
          state(State::kRead),
          known(first),
          keptEnd(end) {}

    bool isKept() const noexcept { return keptEnd > 0; }

    WalkedDirectory* const parent;  // none for the root
    const std::string name;         // in its parent; the root's whole path
    const std::size_t depth;        // directories above it, up to the root
    State state = State::kUnread;   // guarded by the walk's mutex

    std::optional<std::uint32_t> known;  // its place in a scan that was made before
    std::uint32_t keptEnd = 0;           // of those kept; 0 for a directory

    // Set by the thread that reads it, before it is kRead.
    DirectoryStamp stamp;
    bool isUnchanged = false;           // it is what is known of it, and its names are not read
    bool isLeftOut = false;             // the walk does not go into it
    bool hasLinks = false;              // that are followed: where they lead to is not in its stamp
    std::size_t subdirectoryCount = 0;  // of those that are walked
    std::vector<std::string> files;     // what is reported, in byte order
    std::vector<std::string_view> gone;  // sub-directories that are known and not there
    LeftOutNames leftOut;
    int error = 0;  // of errno, if it could not be read, or not to its end
    const WalkedDirectory* sameAbove = nullptr;  // what a loop of links leads back to
    std::exception_ptr failure;                  // for the thread that walks

    std::size_t pathLength = 0;  // of its path with a separator; set when it is reported
};

}  // namespace zqpaths
