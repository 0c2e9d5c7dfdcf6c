#pragma once
// Making one path set of collected paths. All are counted before any is added:
//
//     CharacterCounts counts;
//     countCharacters(paths, threads, counts);  // as often as there are collections
//     HuffmanPathTree set;
//     makeCode(counts, set);
//     addPaths(paths, threads, set);            // the same collections, in the same order
//
// What comes out depends on the paths alone, not on the threads.
//
// Threads: free functions without state; they start threads and join them.

#include "compressedpaths/HuffmanPathTree.hpp"
#include "zqpaths/WorkWatcher.hpp"
#include "zqpaths/set/CharacterCounts.hpp"
#include "zqpaths/set/CollectedPaths.hpp"

namespace zqpaths {

/// Counts the characters of what the trie keeps of these paths: file names, and of a folder what it
/// does not share with the one before. Throws only std::bad_alloc. O(bytes).
void countCharacters(const CollectedPaths& paths, unsigned threads, CharacterCounts& counts);

/// Makes the code of a set that has none.
void makeCode(const CharacterCounts& counts, compressedpaths::HuffmanPathTree& set);

/// Adds paths whose characters all have been counted; neighbouring ones of one folder as one entry.
/// A watcher, if there is one, is told of them. Throws std::bad_alloc and the core's
/// SetTooLargeException. O(bytes).
void addPaths(const CollectedPaths& paths, unsigned threads, compressedpaths::HuffmanPathTree& set,
              const WorkWatcher& watch = {});

}  // namespace zqpaths
