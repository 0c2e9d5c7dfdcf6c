#pragma once
// Names that people give and names that there are:
//
//     nearestName("idnex", {"index", "info"});       // "index"
//     nearestName("frobnicate", {"index", "info"});  // nothing
//     inWords({"man", "bash", "zsh"}, "or");         // "man, bash or zsh"
//
// Threads: free functions without state.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqpaths::program {

/// How many letters must be put in, taken away, exchanged, or swapped with their neighbour to make
/// one name of the other. O(product of the lengths).
std::size_t lettersBetween(std::string_view first, std::string_view second);

/// The name that was probably meant: one that `given` begins, else the one with the fewest letters
/// between, of several the first. Nothing if more than a third of the letters would be wrong.
std::optional<std::string> nearestName(std::string_view given,
                                       const std::vector<std::string>& names);

/// "; the nearest is 'index'", with what stands around names; nothing if none is near.
std::string nearestInWords(std::string_view given, const std::vector<std::string>& names,
                           std::string_view quote);

/// The names with commas, the last two joined by a word.
std::string inWords(const std::vector<std::string>& names, std::string_view lastJoin);

}  // namespace zqpaths::program
