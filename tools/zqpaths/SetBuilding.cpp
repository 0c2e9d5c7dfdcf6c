#include "tools/zqpaths/SetBuilding.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "host/runtime/Error.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/Figures.hpp"
#include "tools/zqpaths/PathBatch.hpp"
#include "tools/zqpaths/PrintablePath.hpp"
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

void tell(const std::string& message) {
    Progress::makeRoom();
    static_cast<void>(std::fprintf(stderr, "zqpaths: %s\n", message.c_str()));
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

void requireRoomFor(const std::string& file, bool mayReplace) {
    const std::filesystem::path path(file);
    if (!mayReplace && std::filesystem::exists(std::filesystem::symlink_status(path)))
        throw Failure(ExitStatus::kFailed,
                      printablePath(file) + " is there already; --force replaces it");
    const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
    if (::access(folder.c_str(), W_OK | X_OK) != 0)
        throw Failure(ExitStatus::kFailed,
                      printablePath(folder) + ": " + std::generic_category().message(errno));
}

ExitStatus statusAfter(const PathSource& source, bool ignoreUnreadable) {
    const std::uint64_t count = source.unreadableCount();
    if (count == 0) return ExitStatus::kDone;
    tell(groupDigits(count) + (count == 1 ? " directory" : " directories") +
         " could not be read and " + (count == 1 ? "is" : "are") + " left out");
    return ignoreUnreadable ? ExitStatus::kDone : ExitStatus::kFailed;
}

void tellSize(const std::string& file, const PathSet& set, const MessageOptions& messages) {
    if (messages.quiet) return;
    tell(printablePath(file) + " holds " + groupDigits(set.size()) +
         (set.size() == 1 ? " path" : " paths"));
}

}  // namespace zqpaths
