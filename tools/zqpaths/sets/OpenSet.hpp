#pragma once
// Sets that are opened to be read.

#include <string>

#include "zqpaths/PathSet.hpp"

namespace zqpaths::program {

/// Throws Error as PathSet::open does.
PathSet openSet(const std::string& file);

}  // namespace zqpaths::program
