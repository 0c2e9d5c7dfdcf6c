#pragma once
// What a file that is mapped, and what a program allocates, takes of memory, measured.
//
//     const std::uint64_t before = allocatedBytes();
//     const PathSet set = openSet("usr.zqp");
//     allocatedBytes() - before;         // bytes of its own
//     residentBytesOf("usr.zqp");        // bytes of the file that stand in memory for it
//
// Threads: free functions without state.

#include <cstdint>
#include <optional>
#include <string>

namespace zqpaths::program {

/// What the program has allocated and not given back. O(arenas).
std::uint64_t allocatedBytes() noexcept;

/// How much of a file's mappings is resident in this process; the pages are the system's own, which
/// all who read the file share. Nothing where the system does not tell. O(mappings).
std::optional<std::uint64_t> residentBytesOf(const std::string& file);

}  // namespace zqpaths::program
