#pragma once
// Looks paths up in the file system, however long they are.

#include <string>

namespace zqpaths::program {

/// Whether there is something of this name; a symbolic link itself counts. Throws Failure kFailed
/// where the system does not tell, as in folders that may not be searched.
bool isOnDisk(const std::string& path);

}  // namespace zqpaths::program
