#include "tools/zqpaths/sources/PathSource.hpp"

#include <sys/stat.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sources/DirectorySource.hpp"
#include "tools/zqpaths/sources/FilteredSource.hpp"
#include "tools/zqpaths/sources/LineInput.hpp"
#include "tools/zqpaths/sources/ListSource.hpp"
#include "tools/zqpaths/sources/SourceFormats.hpp"
#include "tools/zqpaths/sources/SourceSequence.hpp"
#include "tools/zqpaths/sources/WholeFiles.hpp"
#include "tools/zqpaths/sources/archives/ArchiveSource.hpp"
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

/// What --exclude and --max-depth leave of a source that has no directories to enter.
std::unique_ptr<PathSource> filtered(std::unique_ptr<PathSource> source, const WalkOptions& walk) {
    if (!walk.types.empty()) throw wrongUse("--type: only directories tell types");
    return std::make_unique<FilteredSource>(std::move(source), walk);
}

/// A file that is no directory is an archive, or nothing to take paths from.
std::unique_ptr<PathSource> openArchive(const std::string& name) {
    std::unique_ptr<PathSource> archive = ArchiveSource::recognize(name);
    if (!archive) throw failureAt(name, "Not a directory, nor a tar or zip");
    return archive;
}

bool isFile(const std::string& name) {
    struct stat status {};
    return ::stat(name.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

void requireFormat(const SourceOptions& options) {
    const bool isOfFields = options.format == SourceFormat::kJsonLines;
    if (isOfFields && options.field.empty()) throw wrongUse("--from jsonl: --field is required");
    if (!isOfFields && !options.field.empty()) throw wrongUse("--field is for --from jsonl");
}

}  // namespace

std::unique_ptr<PathSource> openSource(const SourceOptions& options, const std::string& set) {
    requireFormat(options);
    const WalkOptions walk = walkOptionsOf(options);
    if (options.list)
        return filtered(std::make_unique<ListSource>(*options.list, options.nulDelimited), walk);
    if (options.directories.empty())
        throw wrongUse(options.format ? "--from: FILE is required" : "DIR or --list is required");
    std::vector<std::unique_ptr<PathSource>> sources;
    for (const std::string& name : options.directories) {
        if (options.format)
            sources.push_back(filtered(openFormat(name, options), walk));
        else if (isFile(name))
            sources.push_back(filtered(openArchive(name), walk));
        else
            sources.push_back(std::make_unique<DirectorySource>(name, walk, set, options.verbose));
    }
    return std::make_unique<SourceSequence>(std::move(sources));
}

WalkOptions walkOptionsOf(const SourceOptions& options) {
    if (options.maxDepth == 0) throw wrongUse("--max-depth 0 would leave nothing");
    return {.follow = options.follow,
            .oneFileSystem = options.oneFileSystem,
            .skipHidden = !options.hidden,
            .jobs = options.jobs,
            .exclude = exclusions(options),
            .types = options.types,
            .maxDepth = options.maxDepth};
}

std::string printableNames(const SourceOptions& options) {
    if (options.list) return printablePath(nameOfInput(*options.list));
    std::string names;
    for (const std::string& name : options.directories)
        names.append(names.empty() ? "" : ", ")
            .append(printablePath(options.format ? nameOfInput(name) : name));
    return names;
}

}  // namespace zqpaths::program
