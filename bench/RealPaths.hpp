#pragma once
// The paths that all benchmarks measure with: the text file named by ZQ_PATHS, one path a line, or
// what /usr holds. They are read once.

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace bench {

/// One batch as the set takes it.
struct Batch {
    std::vector<std::vector<std::u16string>> folders;
    std::vector<std::vector<std::u16string>> files;
};

const std::vector<std::u16string>& paths();
const std::string& text();  // all paths as the bytes they have on disk, a line each

/// The paths as folder entries, in batches of 65,536 paths.
const std::vector<Batch>& batches();

/// How often each character occurs in the names of all batches.
const std::unordered_map<char16_t, double>& frequencies();

/// Builds the code of all characters and adds all batches.
void fill(compressedpaths::HuffmanPathTree& set);

/// Bytes that are allocated on the heap now.
std::size_t heapBytes();

}  // namespace bench
