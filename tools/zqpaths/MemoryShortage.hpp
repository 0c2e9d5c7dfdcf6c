#pragma once
// Notes when memory cannot be had. Not everybody says so who meets it: a class that could not load
// a set for want of memory tells no more than that it could not, as it does of a damaged one.

namespace zqpaths {

/// From now on it is noted.
void watchMemory() noexcept;

bool hasMemoryRunOut() noexcept;

}  // namespace zqpaths
