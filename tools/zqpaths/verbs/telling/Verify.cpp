#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/output/Progress.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "tools/zqpaths/sources/FilesOnDisk.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct VerifyOptions {
    std::string set;
    bool disk = false;
    MessageOptions messages;
};

/// Tells every damage but the last, which it throws.
void requireNoDamage(const PathSet& set) {
    const std::vector<Error> damages = set.verify();
    if (damages.empty()) return;
    for (std::size_t i = 0; i + 1 < damages.size(); ++i) tell(printableText(damages[i].what()));
    throw Error(damages.back());
}

struct DiskResult {
    std::uint64_t missingCount = 0;
    std::uint64_t untoldCount = 0;  // the system did not tell
};

/// Prints the paths that are not there.
DiskResult compareWithDisk(const PathSet& set, Output& output, const MessageOptions& messages) {
    DiskResult result;
    const WantedPaths wanted(set, false);
    Progress progress("comparing", messages, wanted.size());
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
    const PathSet set = openSet(options.set);
    requireNoDamage(set);
    std::string summary = printablePath(options.set) + ": " + groupDigits(set.size()) +
                          (set.size() == 1 ? " path" : " paths") + ", all whole";
    Output output({});
    DiskResult result;
    if (options.disk) {
        result = compareWithDisk(set, output, options.messages);
        summary += ", " + groupDigits(result.missingCount) + " missing on disk";
    }
    // Where missing paths are printed, nothing else is.
    if (!options.messages.quiet && options.disk) tell(summary);
    if (!options.messages.quiet && !options.disk) output.line(summary);
    output.finish();
    return statusOf(result);
}

}  // namespace

Verb verifyVerb() {
    const auto options = std::make_shared<VerifyOptions>();
    return {.name = "verify",
            .synopsis = "SET",
            .summary = "read everything and tell what is damaged",
            .examples = {"zqpaths verify usr.zqp", "zqpaths verify --disk usr.zqp"},
            .options = rows(setArgument(options->set),
                            flag("--disk", options->disk, "compare with the file system"),
                            messageOptions(options->messages)),
            .run = [options] { return verify(*options); }};
}

}  // namespace zqpaths::program
