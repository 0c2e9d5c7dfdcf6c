#include "tools/zqpaths/sources/PathSource.hpp"

#include <sys/stat.h>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sources/DirectorySource.hpp"
#include "tools/zqpaths/sources/FilteredSource.hpp"
#include "tools/zqpaths/sources/LineInput.hpp"
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

void requireFormat(const SourceOptions& options) {
    const bool isOfFields = options.format == SourceFormat::kJsonLines;
    if (isOfFields && options.field.empty()) throw wrongUse("--from jsonl: --field is required");
    if (!isOfFields && !options.field.empty()) throw wrongUse("--field is for --from jsonl");
}

/// Opens one source after the other, or a part of one.
class Opening {
public:
    Opening(const SourceOptions& options, std::string set, UnreadableVisitor onUnreadable)
        : options_(options),
          walk_(walkOptionsOf(options)),
          set_(std::move(set)),
          onUnreadable_(std::move(onUnreadable)) {}

    std::unique_ptr<PathSource> open(const std::string& name, const SourcePart* part) const {
        if (kindOf(name, options_) == SourceKind::kDirectory)
            return std::make_unique<DirectorySource>(
                name, walk_, set_, onUnreadable_,
                part == nullptr ? std::nullopt : std::optional(part->directory));
        if (!options_.format) return filtered(openArchive(name), walk_);
        const ByteRange bytes = part == nullptr ? ByteRange() : part->bytes;
        return filtered(openFormat(name, options_, bytes), walk_);
    }

private:
    const SourceOptions& options_;
    const WalkOptions walk_;
    const std::string set_;
    const UnreadableVisitor onUnreadable_;
};

}  // namespace

SourceKind kindOf(const std::string& name, const SourceOptions& options) {
    if (options.format) return isOfLines(*options.format) ? SourceKind::kLines : SourceKind::kWhole;
    struct stat status {};
    const bool isFile = ::stat(name.c_str(), &status) == 0 && S_ISREG(status.st_mode);
    return isFile ? SourceKind::kWhole : SourceKind::kDirectory;
}

void requireSources(const SourceOptions& options) {
    requireFormat(options);
    if (options.directories.empty())
        throw wrongUse(options.format ? "--from: FILE is required" : "DIR or --list is required");
}

std::unique_ptr<PathSource> openSource(const SourceOptions& options, const std::string& set) {
    requireSources(options);
    const Opening opening(options, set, options.verbose ? UnreadableVisitor(tell) : nullptr);
    std::vector<std::unique_ptr<PathSource>> sources;
    for (const std::string& name : options.directories)
        sources.push_back(opening.open(name, nullptr));
    if (sources.size() == 1) return std::move(sources.front());
    return std::make_unique<SourceSequence>(std::move(sources));
}

std::unique_ptr<PathSource> openPart(const SourceOptions& options, const SourcePart& part,
                                     const std::string& set,
                                     const UnreadableVisitor& onUnreadable) {
    const Opening opening(options, set, options.verbose ? onUnreadable : nullptr);
    return opening.open(options.directories.at(part.source), &part);
}

WalkOptions walkOptionsOf(const SourceOptions& options) {
    if (options.maxDepth == 0) throw wrongUse("--max-depth 0 would leave nothing");
    return {.follow = options.follow,
            .oneFileSystem = options.oneFileSystem,
            .skipHidden = !options.hidden,
            .jobs = options.jobs,
            .exclude = exclusions(options),
            .types = options.types,
            .maxDepth = options.maxDepth,
            .notTaken = options.notTaken};
}

std::string printableNames(const SourceOptions& options) {
    std::string names;
    for (const std::string& name : options.directories)
        names.append(names.empty() ? "" : ", ")
            .append(printablePath(options.format ? nameOfInput(name) : name));
    return names;
}

}  // namespace zqpaths::program
