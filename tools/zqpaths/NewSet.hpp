#pragma once
// What the verbs that make a set do before their work and after it:
//
//     requireRoomFor(options.set, options.force);
//     ...
//     saveNewSet(options.set, set, options.force, messages);

#include <string>

#include "tools/zqpaths/Options.hpp"
#include "tools/zqpaths/PathSet.hpp"

namespace zqpaths {

/// Throws Failure kFailed if there is something at `file` that may not be replaced, or if its
/// folder takes no new file: better said before the work than after it.
void requireRoomFor(const std::string& file, bool mayReplace);

/// Saves the set and tells its size. Throws Failure as SetFile::save does.
void saveNewSet(const std::string& file, PathSet& set, bool mayReplace,
                const MessageOptions& messages);

/// Tells how many paths the set in `file` has now.
void tellSize(const std::string& file, const PathSet& set, const MessageOptions& messages);

}  // namespace zqpaths
