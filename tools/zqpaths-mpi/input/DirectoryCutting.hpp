#pragma once
// Cuts a tree of directories into parts that several processes can walk, in the order of the walk:
//
//     /usr            alone        a directory alone is what is directly in it,
//     /usr/bin        with all     one with all what is below it, too
//     /usr/lib        alone
//     /usr/lib/gcc    with all
//     /usr/share      with all
//
// Where it is cut depends on the tree and the way in which it is walked alone.
//
// Threads: a free function without state.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "zqpaths/directory/DirectoryWalk.hpp"

namespace zqpaths::program::mpi {

struct DirectoryCut {
    WalkPart part;

    /// Bytes of the paths of a directory alone, one more for each; of one with all below it nobody
    /// knows them.
    std::optional<std::uint64_t> textSize;
};

/// Reads the upper levels of a tree, breadth first, until so many directories with all below them
/// stand side by side or the tree ends, no more than 64 levels and 10,000 directories. What cannot
/// be read stays for who walks it. Throws as walkDirectory.
std::vector<DirectoryCut> cutDirectory(const std::string& root, const WalkOptions& options,
                                       std::size_t enough);

}  // namespace zqpaths::program::mpi
