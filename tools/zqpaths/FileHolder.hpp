#pragma once
// Who holds a database file, as the system tells it.

#include <string>

namespace zqpaths {

/// "zqpaths (process 4711)", who has the locks that SQLite sets on the file at `path`; "another
/// program" if the system does not tell, or whoever it was has just let go. Must not be called
/// while this process has the file open as a database: its own locks would go.
std::string holderOf(const std::string& path);

}  // namespace zqpaths
