#pragma once
// What can be read only once, a pipe, say, kept in a file that has no name: it is gone with its
// descriptor, however the program ends.

#include <string>

#include "tools/zqpaths/FileDescriptor.hpp"

namespace zqpaths {

/// A temporary file, in $TMPDIR or else /tmp, with all that can still be read from `input`. Throws
/// Failure kFailed, naming `inputName` or the folder, if something cannot be read or written.
FileDescriptor temporaryCopy(int input, const std::string& inputName);

}  // namespace zqpaths
