#pragma once
// PathSource gives the paths of directories or of a list, once:
//
//     const std::unique_ptr<PathSource> source = openSource(options.source);
//     source->visit([](std::string_view path) { ... });
//
// It holds none of the paths.

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "tools/zqpaths/ExitStatus.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"

namespace zqpaths::program {

class PathSource {
public:
    PathSource() = default;
    PathSource(const PathSource&) = delete;
    PathSource& operator=(const PathSource&) = delete;
    virtual ~PathSource() = default;

    /// Gives all paths. Throws Failure kFailed for a list that cannot be read, or, with its line,
    /// that holds an empty path or a NUL; and what the visitor throws. Called once.
    virtual void visit(const std::function<void(std::string_view path)>& visitor) = 0;

    /// What is to be remembered of the directories that were read; none of other sources.
    virtual std::vector<EncodedScan> takeScans() { return {}; }

    /// The directories that could not be read; each was told on standard error.
    virtual std::uint64_t unreadableCount() const noexcept = 0;
};

/// Throws Failure kFailed if neither a list nor directories are given, if the list cannot be read
/// or one of the directories is none.
std::unique_ptr<PathSource> openSource(const SourceOptions& options);

/// How directories are to be read.
WalkOptions walkOptionsOf(const SourceOptions& options);

/// How messages call a source: the names of its directories or of its list.
std::string printableNames(const SourceOptions& options);

/// What a verb that has read `source` ends with; tells how much could not be read.
ExitStatus statusAfter(const PathSource& source, bool ignoreUnreadable);

}  // namespace zqpaths::program
