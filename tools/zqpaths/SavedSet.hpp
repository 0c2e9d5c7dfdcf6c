#pragma once
// A set that is saved in a file, opened to be read.

#include <string>

#include "tools/zqpaths/PathSet.hpp"

namespace zqpaths {

/// Throws Failure as SetFile::load and PathSet::restored do, and kFailed if the file holds an
/// object of another class.
PathSet openSet(const std::string& file);

}  // namespace zqpaths
