#pragma once
// Where paths come from: a directory, with all that is in it, or a text file with one path a line.
//
// Threads: free functions without state.

#include <cstddef>
#include <stdexcept>
#include <string>

#include "examples/PathList.hpp"

namespace examples {

/// The input cannot be used; what() says why, for people.
class InputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct PathInput {
    PathList paths;                   // at least one
    std::size_t unreadableCount = 0;  // folders that had to be skipped; each was reported
};

/// The paths of what `source` names. What cannot be read in a directory is reported to standard
/// error and skipped. In a list, every byte of a line counts but the newline.
/// Throws InputError if there is no such thing or no path in it, or if a line of a list is no path.
PathInput readPaths(const std::string& source);

}  // namespace examples
