#pragma once
// Files that are read and written as a whole.
//
// Threads: free functions; several may write the same file, the last one stays.

#include <cstdint>
#include <string>
#include <vector>

namespace zqpaths::program {

/// All bytes of a file, which may be a pipe. Throws Failure kFailed.
std::vector<std::uint8_t> readWholeFile(const std::string& path);

/// Writes the bytes. A file that is there is replaced when the new one is whole, and nothing else
/// is left also if a signal comes meanwhile; pipes and devices stay what they are and take the
/// bytes. Throws Failure kFailed.
void writeWholeFile(const std::string& path, const std::vector<std::uint8_t>& bytes);

}  // namespace zqpaths::program
