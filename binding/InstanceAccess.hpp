#pragma once
// How the binding gets from an object of the host to the path set that it owns.

#include "compressedpaths/HuffmanPathTree.hpp"
#include "host/arrays/kxArray.hpp"
#include "host/kobj/COSInterface.hpp"

namespace binding {

/// Throw the host's errors if this is no object of the class.
compressedpaths::HuffmanPathTree& pathTreeOf(const kobj::COSInterfacePtr& object);
compressedpaths::HuffmanPathTree& pathTreeOf(const kxArray* object);

}  // namespace binding
