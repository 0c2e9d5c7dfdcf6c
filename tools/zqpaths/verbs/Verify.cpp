#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/Figures.hpp"
#include "tools/zqpaths/FilesOnDisk.hpp"
#include "tools/zqpaths/Messages.hpp"
#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/PathCheck.hpp"
#include "tools/zqpaths/PrintablePath.hpp"
#include "tools/zqpaths/Progress.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/SetFile.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

Failure failureOf(const std::string& file, const SetFile::Damage& damage) {
    return failureAt(file, SetFile::describe(damage), ExitStatus::kDamaged);
}

/// Tells every damage but the last, which it throws.
void requireNoDamage(const std::string& file) {
    const std::vector<SetFile::Damage> damages = SetFile::check(file);
    if (damages.empty()) return;
    for (std::size_t i = 0; i + 1 < damages.size(); ++i) tell(failureOf(file, damages[i]).what());
    throw failureOf(file, damages.back());
}

struct DiskResult {
    std::uint64_t missingCount = 0;
    std::uint64_t untoldCount = 0;  // the system did not tell
};

/// Prints the paths that are not there.
DiskResult compareWithDisk(PathSet& set, Output& output, const MessageOptions& messages) {
    DiskResult result;
    Progress progress("comparing", messages, set.size());
    set.get(1, set.size(), [&](std::uint64_t number, std::string_view path) {
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

}  // namespace

ExitStatus runVerify(const VerifyOptions& options, const MessageOptions& messages) {
    requireNoDamage(options.set);
    PathSet set = openSet(options.set);
    requireWholePaths(set, options.set, messages);
    std::string summary =
        printablePath(options.set) + ": " + groupDigits(set.size()) + " paths, all whole";
    Output output({});
    DiskResult result;
    if (options.disk) {
        result = compareWithDisk(set, output, messages);
        summary += ", " + groupDigits(result.missingCount) + " missing on disk";
    }
    // Where missing paths are printed, nothing else is.
    if (!messages.quiet && options.disk) tell(summary);
    if (!messages.quiet && !options.disk) output.line(summary);
    output.finish();
    return statusOf(result);
}

}  // namespace zqpaths
