#pragma once
// Compares a path set with what it should be, and says in words what differs:
//
//     EXPECT_EQ(differenceOf(set, plain), "");
//
// No comparison changes the set. Names are decoded by the set itself, so it has to have its code.

#include <string>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "tests/support/PlainPathSet.hpp"

namespace compressedpaths {

/// Counters, totals and tracks; names by number, one by one and in one request; the place in the
/// walk; the saved bytes.
std::string differenceOf(HuffmanPathTree& set, const PlainPathSet& plain);

/// The paths as text and what is found by name.
std::string differenceInTexts(const HuffmanPathTree& set, const PlainPathSet& plain);
std::string differenceInFinding(const HuffmanPathTree& set, const PlainPathSet& plain);

}  // namespace compressedpaths
