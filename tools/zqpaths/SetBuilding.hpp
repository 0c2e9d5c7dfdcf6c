#pragma once
// Sets are built in two passes over a source: the characters of all paths are counted, then the
// paths are added in batches. So memory holds the set and one batch, never the list.
//
//     std::optional<PathSet> set = buildSet(*source, messages);  // nothing if there are no paths

#include <functional>
#include <optional>

#include "tools/zqpaths/CharacterCounts.hpp"
#include "tools/zqpaths/ExitStatus.hpp"
#include "tools/zqpaths/Options.hpp"
#include "tools/zqpaths/PathSet.hpp"
#include "tools/zqpaths/PathSource.hpp"

namespace zqpaths {

/// A path has a character that the set does not have: it was not there when they were counted.
class UncountedCharacter {};

CharacterCounts countCharacters(PathSource& source, const MessageOptions& messages);

/// Adds the paths of a source of which `counted` tells what is expected. Throws UncountedCharacter
/// when it is too late: some paths have been added.
void addPaths(PathSet& set, PathSource& source, const CharacterCounts& counted,
              const MessageOptions& messages);

/// Does `work` again when it throws UncountedCharacter, a few times: directories and lists may
/// change between two passes. Throws Failure kFailed if they never stop changing.
PathSet againWhilePathsChange(const std::function<PathSet()>& work);

/// A set of all paths of a source, in their order.
std::optional<PathSet> buildSet(PathSource& source, const MessageOptions& messages);

/// What a verb that has read `source` ends with; it tells how much could not be read.
ExitStatus statusAfter(const PathSource& source, bool ignoreUnreadable);

}  // namespace zqpaths
