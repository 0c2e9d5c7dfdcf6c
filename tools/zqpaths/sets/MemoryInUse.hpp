#pragma once
// What a file that is mapped, and what a program allocates, takes of memory, measured.
//
//     const std::uint64_t before = allocatedBytes();
//     const PathSet set = openSet("usr.zqp");
//     allocatedBytes() - before;         // bytes of its own
//     residentBytesOf({"usr.zqp"});      // bytes of the file that stand in memory for it
//
// Threads: free functions without state.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zqpaths::program {

/// What the program has allocated and not given back. O(arenas).
std::uint64_t allocatedBytes() noexcept;

/// How much of the mappings of files is resident in this process; the pages are the system's own,
/// which all who read the files share. Nothing where the system does not tell. O(mappings + files).
std::optional<std::uint64_t> residentBytesOf(const std::vector<std::string>& files);

}  // namespace zqpaths::program
