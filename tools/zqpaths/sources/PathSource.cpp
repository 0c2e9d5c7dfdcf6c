#include "tools/zqpaths/sources/PathSource.hpp"

#include <cstdint>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sources/DirectorySource.hpp"
#include "tools/zqpaths/sources/FilteredSource.hpp"
#include "tools/zqpaths/sources/ListSource.hpp"
#include "tools/zqpaths/sources/WholeFiles.hpp"
#include "zqpaths/exclusion/ExclusionRules.hpp"

namespace zqpaths::program {

namespace {

/// The patterns of files, then those of the command line, which have the last word.
std::vector<std::string> exclusions(const SourceOptions& options) {
    std::vector<std::string> patterns;
    for (const std::string& file : options.excludeFrom) {
        const std::vector<std::uint8_t> bytes = readWholeFile(file);
        for (std::string& pattern : exclusionPatterns(std::string(bytes.begin(), bytes.end())))
            patterns.push_back(std::move(pattern));
    }
    patterns.insert(patterns.end(), options.exclude.begin(), options.exclude.end());
    return patterns;
}

WalkOptions walkOptions(const SourceOptions& options) {
    if (options.maxDepth == 0) throw wrongUse("--max-depth 0 would leave nothing");
    return {.follow = options.follow,
            .oneFileSystem = options.oneFileSystem,
            .skipHidden = !options.hidden,
            .jobs = options.jobs,
            .exclude = exclusions(options),
            .types = options.types,
            .maxDepth = options.maxDepth};
}

}  // namespace

std::unique_ptr<PathSource> openSource(const SourceOptions& options, const std::string& set) {
    const WalkOptions walk = walkOptions(options);
    if (options.list) {
        if (!options.types.empty()) throw wrongUse("--type: a list does not tell types");
        return std::make_unique<FilteredSource>(
            std::make_unique<ListSource>(*options.list, options.nulDelimited), walk);
    }
    if (options.directories.empty()) throw wrongUse("DIR or --list is required");
    return std::make_unique<DirectorySource>(options.directories, walk, set, options.verbose);
}

std::string printableNames(const SourceOptions& options) {
    if (options.list) return ListSource::printableName(*options.list);
    std::string names;
    for (const std::string& directory : options.directories)
        names.append(names.empty() ? "" : ", ").append(printablePath(directory));
    return names;
}

}  // namespace zqpaths::program
