#pragma once
// PathSource gives the paths of directories, lists, archives or listings, once:
//
//     const std::unique_ptr<PathSource> source = openSource(options.source, "usr.zqp");
//     const SourceReport report = source->visit([](std::string_view path) { ... });
//     return statusAfter(report, options.source, options.messages);
//
// It holds none of the paths.

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sources/LineInput.hpp"
#include "tools/zqpaths/sources/SourceReport.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"

namespace zqpaths::program {

class PathSource {
public:
    PathSource() = default;
    PathSource(const PathSource&) = delete;
    PathSource& operator=(const PathSource&) = delete;
    virtual ~PathSource() = default;

    /// Gives all paths. Throws Failure kFailed for a list that cannot be read, or, with its line,
    /// that holds an empty path, a NUL or what does not fit its format, and for an archive that is
    /// damaged; and what the visitor throws. Called once.
    virtual SourceReport visit(const std::function<void(std::string_view path)>& visitor) = 0;

    /// How much of it has been given, from 0 to 1, if that can be foretold; asked on any thread.
    virtual std::optional<double> partGiven() const noexcept { return std::nullopt; }

    /// What is to be remembered of the directories that were read, once; none of other sources.
    virtual std::vector<EncodedScan> takeScans() { return {}; }
};

/// A source for a set; its file, also the one that is being written when the paths are visited, is
/// not among those of a directory. Throws Failure kFailed if nothing to read is given, if it
/// cannot be read or is not what it should be, and for options that cannot be meant.
std::unique_ptr<PathSource> openSource(const SourceOptions& options, const std::string& set);

/// What a name that options tell stands for, and how it can be cut: a tree of directories, lines,
/// or an archive, which is read as a whole.
enum class SourceKind { kDirectory, kLines, kWhole };
SourceKind kindOf(const std::string& name, const SourceOptions& options);

/// Throws Failure kFailed if nothing to read is given, and for options that do not fit.
void requireSources(const SourceOptions& options);

/// A part of one of the sources that options tell.
struct SourcePart {
    std::size_t source = 0;  // its place among SourceOptions::directories
    ByteRange bytes{};       // of lines
    WalkPart directory{};    // of a directory

    bool operator==(const SourcePart&) const = default;
};

/// The same as openSource of one part, for processes that share the work. Nothing is recorded of
/// its directories. Those that cannot be read are told to `onUnreadable` with `options.verbose`.
std::unique_ptr<PathSource> openPart(const SourceOptions& options, const SourcePart& part,
                                     const std::string& set, const UnreadableVisitor& onUnreadable);

/// How directories are to be read. Throws Failure kFailed for options that cannot be meant, or a
/// file of patterns that cannot be read.
WalkOptions walkOptionsOf(const SourceOptions& options);

/// How messages call a source: the names of its directories or files.
std::string printableNames(const SourceOptions& options);

}  // namespace zqpaths::program
