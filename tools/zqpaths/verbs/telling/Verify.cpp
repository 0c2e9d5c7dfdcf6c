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
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/VerifyReport.hpp"
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

struct VerifyPhase {
    enum : std::size_t { kSumming, kReading, kComparing };
};

/// Measured with the lists that bench/RESULTS.md names, in memory.
std::vector<WorkPhase> verifyPhases(bool isDiskCompared) {
    std::vector<WorkPhase> phases{{"summing", WorkUnit::kBytes, 1},
                                  {"reading", WorkUnit::kPaths, 9}};
    if (isDiskCompared) phases.push_back({"comparing with the disk", WorkUnit::kPaths, 40});
    return phases;
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
    const std::uint64_t pathCount = set.size() - missingPathCountOf(set);
    return set.verify([&](WorkStep step, std::uint64_t items) {
        if (step == WorkStep::kReading) progress.begin(VerifyPhase::kReading, pathCount);
        // Of several files one is summed after another has been read.
        progress.advancePhase(
            step == WorkStep::kReading ? VerifyPhase::kReading : VerifyPhase::kSumming, items);
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
    progress.begin(VerifyPhase::kComparing, set.size() - missingPathCountOf(set));
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

ExitStatus verify(const VerifyOptions& options) {
    const PathSet set = openSet(options.set, options.partial);
    Output output(options.output, {.isQuiet = options.messages.quiet});
    Progress progress("verifying", verifyPhases(options.disk), options.messages);
    VerifiedSet verified{options.set, set.size()};
    if (options.partial) verified.unreadCount = missingPathCountOf(set);
    requireNoDamage(verified, damagesOf(set, progress), options.output, output);
    std::optional<DiskResult> disk;
    if (options.disk) {
        disk = compareWithDisk(set, output, progress);
        verified.missingCount = disk->missingCount;
    }
    tellWhole(verified, options.output, options.messages, output);
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
