#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "tools/zqpaths/sources/FilesOnDisk.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct VerifyOptions {
    std::string set;
    bool disk = false;
    bool partial = false;
    OutputOptions output;
    MessageOptions messages;
};

enum Phase : std::size_t { kSumming, kReading, kComparing };

/// Measured with the lists that bench/RESULTS.md names, in memory.
std::vector<WorkPhase> phases(bool isDiskCompared) {
    std::vector<WorkPhase> phases{{"summing", WorkUnit::kBytes, 1},
                                  {"reading", WorkUnit::kPaths, 9}};
    if (isDiskCompared) phases.push_back({"comparing with the disk", WorkUnit::kPaths, 40});
    return phases;
}

/// Paths of files that are missing.
std::uint64_t unreadCountOf(const PathSet& set) {
    std::uint64_t count = 0;
    for (const MissingFile& missing : missingFilesOf(set)) count += missing.count;
    return count;
}

/// Nothing if a file of a set of sets cannot be opened, which is one of the damages.
std::optional<std::uint64_t> bytesToSum(const PathSet& set) {
    try {
        std::uint64_t size = 0;
        for (const PathSet::Segment& segment : set.segments()) size += segment.size;
        return size;
    } catch (const Error&) {
        return std::nullopt;
    }
}

std::vector<Error> damagesOf(const PathSet& set, Progress& progress) {
    if (const std::optional<std::uint64_t> size = bytesToSum(set)) progress.expect(*size);
    return set.verify([&](WorkStep step, std::uint64_t items) {
        if (step == WorkStep::kReading) progress.begin(kReading, set.size() - unreadCountOf(set));
        progress.advance(items);
    });
}

struct DiskResult {
    std::uint64_t missingCount = 0;
    std::uint64_t untoldCount = 0;  // the system did not tell
};

/// Prints the paths that are not there.
DiskResult compareWithDisk(const PathSet& set, Output& output, Progress& progress) {
    DiskResult result;
    const WantedPaths wanted(set, false);
    progress.begin(kComparing, set.size() - unreadCountOf(set));
    set.forEach([&](std::uint64_t number, std::string_view path) {
        if (!wanted.has(number)) return;
        try {
            if (!isOnDisk(std::string(path))) {
                ++result.missingCount;
                output.path(number, path);
            }
        } catch (const Failure& failure) {
            ++result.untoldCount;
            tell(failure.what());
        }
        progress.advance();
    });
    return result;
}

ExitStatus statusOf(const DiskResult& result) {
    if (result.untoldCount > 0) return ExitStatus::kFailed;
    return result.missingCount > 0 ? ExitStatus::kNegative : ExitStatus::kDone;
}

/// An object with what has been found out; "missing" where the disk was looked at.
void printResult(const VerifyOptions& options, const PathSet& set,
                 const std::vector<std::string>& damages, const std::optional<DiskResult>& disk,
                 Output& output) {
    JsonObject object;
    object.addName("set", "setBytes", options.set);
    object.add("paths", set.size());
    if (options.partial) object.add("pathsMissing", unreadCountOf(set));
    object.add("whole", damages.empty());
    object.addNames("damages", "damageBytes", damages);
    if (disk) object.add("missing", disk->missingCount);
    output.line(object);
}

/// The one that decides the status: a file that is not there says less than damage does.
std::size_t worstOf(const std::vector<Error>& damages) {
    const auto worst = std::find_if(damages.rbegin(), damages.rend(), [](const Error& damage) {
        return damage.kind() == ErrorKind::kDamaged;
    });
    return worst == damages.rend() ? damages.size() - 1
                                   : static_cast<std::size_t>(damages.rend() - worst) - 1;
}

/// Tells every damage but the worst, which it throws. Programs get them all in one object.
void requireNoDamage(const PathSet& set, const VerifyOptions& options, Output& output,
                     Progress& progress) {
    const std::vector<Error> damages = damagesOf(set, progress);
    if (damages.empty()) return;
    if (options.output.json) {
        std::vector<std::string> texts;
        texts.reserve(damages.size());
        for (const Error& damage : damages) texts.emplace_back(damage.what());
        printResult(options, set, texts, std::nullopt, output);
        output.finish();
    }
    const std::size_t worst = worstOf(damages);
    for (std::size_t i = 0; i < damages.size(); ++i)
        if (i != worst) tell(printableText(damages[i].what()));
    throw Error(damages[worst]);
}

/// "1,234 paths", or "1,000 of 1,234 paths" where others are missing.
std::string countText(const PathSet& set) {
    const std::uint64_t unreadCount = unreadCountOf(set);
    return (unreadCount == 0 ? "" : groupDigits(set.size() - unreadCount) + " of ") +
           groupDigits(set.size()) + (set.size() == 1 ? " path" : " paths");
}

void tellResult(const VerifyOptions& options, const PathSet& set,
                const std::optional<DiskResult>& disk, Output& output) {
    if (options.output.json) {
        printResult(options, set, {}, disk, output);
        return;
    }
    if (options.messages.quiet) return;
    const std::string summary = printablePath(options.set) + ": " + countText(set) + ", all whole";
    // Where missing paths or a table of them are printed, nothing else is.
    if (disk)
        tell(summary + ", " + groupDigits(disk->missingCount) + " missing on disk");
    else if (options.output.csv)
        tell(summary);
    else
        output.line(summary);
}

ExitStatus verify(const VerifyOptions& options) {
    const PathSet set = openSet(options.set, options.partial);
    Output output(options.output, {.isQuiet = options.messages.quiet});
    Progress progress("verifying", phases(options.disk), options.messages);
    requireNoDamage(set, options, output, progress);
    std::optional<DiskResult> disk;
    if (options.disk) disk = compareWithDisk(set, output, progress);
    tellResult(options, set, disk, output);
    output.finish();
    return disk ? statusOf(*disk) : ExitStatus::kDone;
}

}  // namespace

Verb verifyVerb() {
    const auto options = std::make_shared<VerifyOptions>();
    return {.name = "verify",
            .synopsis = "SET",
            .summary = "read everything and tell what is damaged",
            .examples = {"zqpaths verify usr.zqp", "zqpaths verify --disk usr.zqp"},
            .details =
                "With --disk the paths that are not there are printed. With --json the last object "
                "tells of the set as a whole, and also of damage, which ends with status 3.",
            .options = rows(setArgument(options->set),
                            flag("--disk", options->disk, "compare with the file system"),
                            partialOption(options->partial), outputOptions(options->output),
                            messageOptions(options->messages)),
            .run = [options] { return verify(*options); }};
}

}  // namespace zqpaths::program
