#include "tools/zqpaths/sources/PathSource.hpp"

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sources/DirectorySource.hpp"
#include "tools/zqpaths/sources/ListSource.hpp"

namespace zqpaths::program {

std::unique_ptr<PathSource> openSource(const SourceOptions& options) {
    if (options.list) return std::make_unique<ListSource>(*options.list, options.nulDelimited);
    if (options.directories.empty()) throw wrongUse("DIR or --list is required");
    return std::make_unique<DirectorySource>(options.directories, walkOptionsOf(options));
}

WalkOptions walkOptionsOf(const SourceOptions& options) {
    return {.follow = options.follow,
            .oneFileSystem = options.oneFileSystem,
            .skipHidden = !options.hidden,
            .jobs = options.jobs};
}

std::string printableNames(const SourceOptions& options) {
    if (options.list) return ListSource::printableName(*options.list);
    std::string names;
    for (const std::string& directory : options.directories)
        names.append(names.empty() ? "" : ", ").append(printablePath(directory));
    return names;
}

ExitStatus statusAfter(const PathSource& source, bool ignoreUnreadable) {
    const std::uint64_t count = source.unreadableCount();
    if (count == 0) return ExitStatus::kDone;
    tell(groupDigits(count) + (count == 1 ? " directory" : " directories") +
         " could not be read and " + (count == 1 ? "is" : "are") + " left out");
    return ignoreUnreadable ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace zqpaths::program
