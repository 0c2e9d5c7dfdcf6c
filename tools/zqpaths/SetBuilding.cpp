#include "tools/zqpaths/SetBuilding.hpp"

#include <string_view>

#include "host/runtime/Error.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/Figures.hpp"
#include "tools/zqpaths/Messages.hpp"
#include "tools/zqpaths/PathBatch.hpp"
#include "tools/zqpaths/Progress.hpp"

namespace zqpaths {
namespace {

/// The class's words for a path that it has no code for; its other errors are not ours to mend.
constexpr std::string_view kNoCode = "Code for the character not found.";

constexpr int kMaxTries = 3;

void addBatch(PathSet& set, PathBatch& batch, Progress& progress) {
    const std::size_t count = batch.size();
    try {
        set.add(batch);
    } catch (const korvex::Error& error) {
        if (error.what() == kNoCode) throw UncountedCharacter();
        throw;
    }
    progress.advance(count);
}

}  // namespace

CharacterCounts countCharacters(PathSource& source, const MessageOptions& messages) {
    CharacterCounts counted;
    Progress progress("counting", messages);
    source.visit([&](std::string_view path) {
        counted.count(path);
        progress.advance();
    });
    return counted;
}

void addPaths(PathSet& set, PathSource& source, const CharacterCounts& counted,
              const MessageOptions& messages) {
    Progress progress("adding", messages, counted.pathCount());
    PathBatch batch;
    source.visit([&](std::string_view path) {
        batch.append(path);
        if (batch.isFull()) addBatch(set, batch, progress);
    });
    if (batch.size() > 0) addBatch(set, batch, progress);
}

PathSet againWhilePathsChange(const std::function<PathSet()>& work) {
    for (int tries = 0; tries < kMaxTries; ++tries) {
        try {
            return work();
        } catch (const UncountedCharacter&) {
            continue;
        }
    }
    throw Failure(ExitStatus::kFailed,
                  "the paths change while they are read: characters that were not there when they "
                  "were counted came up " +
                      std::to_string(kMaxTries) + " times");
}

std::optional<PathSet> buildSet(PathSource& source, const MessageOptions& messages) {
    PathSet built = againWhilePathsChange([&] {
        const CharacterCounts counted = countCharacters(source, messages);
        PathSet set(counted);
        if (counted.pathCount() > 0) addPaths(set, source, counted, messages);
        return set;
    });
    if (built.size() == 0) return std::nullopt;
    return built;
}

ExitStatus statusAfter(const PathSource& source, bool ignoreUnreadable) {
    const std::uint64_t count = source.unreadableCount();
    if (count == 0) return ExitStatus::kDone;
    tell(groupDigits(count) + (count == 1 ? " directory" : " directories") +
         " could not be read and " + (count == 1 ? "is" : "are") + " left out");
    return ignoreUnreadable ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace zqpaths
