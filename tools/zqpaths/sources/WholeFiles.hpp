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

/// A file to be written, and what is to be in it.
struct WholeFile {
    std::string path;
    const std::vector<std::uint8_t>& bytes;
};

/// Writes files that belong together. What is there is replaced, if it may be, when all new ones
/// are whole, and nothing else is left also if a signal comes meanwhile; pipes and devices stay
/// what they are and take the bytes. Throws Failure kFailed, and where nothing may be replaced
/// there is then no file; elsewhere as a rule before anything is replaced.
void writeWholeFiles(const std::vector<WholeFile>& files, bool mayReplace);

}  // namespace zqpaths::program
