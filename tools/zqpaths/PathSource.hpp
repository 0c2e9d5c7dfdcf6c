#pragma once
// PathSource gives the paths of directories or of a list, in the same order each time it is asked:
// the first time to count their characters, the second to add them.
//
//     const std::unique_ptr<PathSource> source = openSource(options.source);
//     source->visit([](std::string_view path) { ... });
//     source->visit([](std::string_view path) { ... });
//
// It does not hold the paths: directories are read again, a list too, and standard input is kept in
// a temporary file.

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "tools/zqpaths/Options.hpp"

namespace zqpaths {

class PathSource {
public:
    PathSource() = default;
    PathSource(const PathSource&) = delete;
    PathSource& operator=(const PathSource&) = delete;
    virtual ~PathSource() = default;

    /// Gives the paths as they are by now; directories and lists may have changed since the last
    /// visit. Throws Failure kFailed for a list that cannot be read, or, with its line, that holds
    /// an empty path or a NUL.
    virtual void visit(const std::function<void(std::string_view path)>& visitor) = 0;

    /// The directories that could not be read in the last visit; each was reported once on standard
    /// error.
    virtual std::uint64_t unreadableCount() const noexcept = 0;
};

/// Throws Failure kFailed if the list cannot be read or one of the directories is none.
std::unique_ptr<PathSource> openSource(const SourceOptions& options);

}  // namespace zqpaths
