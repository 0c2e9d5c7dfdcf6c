#pragma once
// The class of path sets, and what its library needs.

#include "host/runtime/Session.hpp"

namespace zqpaths {

inline constexpr const char* kPathSetClass = "korvex.io.datastore.internal.fileset.HuffmanPaths";

/// The session of the program, in which the library of the class is loaded. Throws Failure kFailed
/// if the library is not where it belongs: in ../lib of the program's directory.
korvex::Session& pathSetSession();

}  // namespace zqpaths
