#pragma once
// A whole set as the two pieces that hosts keep of one: the characters of its code, and the saved
// form of the rest.
//
//     const zqpaths::SavedPieces pieces = zqpaths::exportPieces(zqpaths::PathSet::open("usr.zqp"));
//     zqpaths::PathSetWriter writer("again.zqp");
//     zqpaths::importPieces(pieces, writer);
//     writer.commit();
//
// What is exported depends on the paths and their order alone, so that what was exported once and
// imported is exported again as the same bytes. Pieces that others made may have another code, and
// the entries of a folder cut otherwise: their paths come back, their bytes need not.
//
// Threads: free functions without state; they start threads and join them.

#include <cstdint>
#include <string>
#include <vector>

#include "zqpaths/Error.hpp"
#include "zqpaths/Export.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths {

struct SavedPieces {
    std::vector<std::uint8_t> treeString;  // UTF-16, the lowest byte of a character first
    std::vector<std::uint8_t> pathTree;    // the saved form, compressed
    // What errors call the pieces: the files that they are read from, as a rule.
    std::string treeStringName = "the tree string";
    std::string pathTreeName = "the path tree";
};

/// All paths of a set as one. Throws Error kDamaged as reading the set does, kWrongUse if the set
/// is larger than the saved form can say. Takes what one set of all paths takes. O(bytes).
ZQPATHS_EXPORT SavedPieces exportPieces(const PathSet& set);

/// The same; `watch` is told of the paths that have been read, then of those that have been coded,
/// all each time, and of the moment from which on they are packed.
ZQPATHS_EXPORT SavedPieces exportPieces(const PathSet& set, const WorkWatcher& watch);

/// Adds the paths of a saved set in the order of their numbers, after all of them have been read,
/// each name through the code and back. Characters that stand in each other's places make other
/// names, and nothing in the pieces tells. Throws Error kDamaged, with the name of the piece,
/// before anything is added; also if the set has paths that were added on their own, which have no
/// numbers. Throws what adding throws. O(bytes).
ZQPATHS_EXPORT void importPieces(SavedPieces pieces, PathSetWriter& writer);

}  // namespace zqpaths
