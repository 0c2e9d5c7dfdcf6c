#pragma once
// Names on their way between cell arrays of the host and lists of the core.

#include <string>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "host/arrays/kxArray.hpp"

namespace binding {

/// How an empty element is refused. `position` counts from 1: that of a list, as "3", or of a list
/// and the name in it, as "3, 1".
using RefuseEmpty = void (*)(const std::string& position);

/// The names of a cell array of cell arrays of names, in element order. `refuseEmpty` must throw;
/// it is called for the first list without names or name without characters.
/// O(characters).
std::vector<std::vector<std::u16string>> toNameLists(const kxArray* lists, RefuseEmpty refuseEmpty);

/// A column of the decoded names, and a column of such columns. O(characters).
kxArrayPtr toNameColumn(const compressedpaths::Path& codedNames,
                        const compressedpaths::HuffmanPathTree& tree);
kxArrayPtr toNameColumns(const std::vector<compressedpaths::Path>& codedLists,
                         const compressedpaths::HuffmanPathTree& tree);

}  // namespace binding
