#include "tools/zqpaths/output/VerifyReport.hpp"

#include <algorithm>
#include <cstddef>

#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/JsonText.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

/// An object with what has been found out; "missing" where the disk was looked at.
void printResult(const VerifiedSet& set, const std::vector<std::string>& damages, Output& output) {
    JsonObject object;
    object.addName("set", "setBytes", set.file);
    object.add("paths", set.pathCount);
    if (set.unreadCount) object.add("pathsMissing", *set.unreadCount);
    object.add("whole", damages.empty());
    object.addNames("damages", "damageBytes", damages);
    if (set.missingCount) object.add("missing", *set.missingCount);
    output.line(object);
}

/// "1,234 paths", or "1,000 of 1,234 paths" where others could not be read.
std::string countText(const VerifiedSet& set) {
    const std::uint64_t unreadCount = set.unreadCount.value_or(0);
    return (unreadCount == 0 ? "" : groupDigits(set.pathCount - unreadCount) + " of ") +
           groupDigits(set.pathCount) + (set.pathCount == 1 ? " path" : " paths");
}

std::size_t worstOf(const std::vector<Error>& damages) {
    const auto worst = std::find_if(damages.rbegin(), damages.rend(), [](const Error& damage) {
        return damage.kind() == ErrorKind::kDamaged;
    });
    return worst == damages.rend() ? damages.size() - 1
                                   : static_cast<std::size_t>(damages.rend() - worst) - 1;
}

}  // namespace

void requireNoDamage(const VerifiedSet& set, const std::vector<Error>& damages,
                     const OutputOptions& options, Output& output) {
    if (damages.empty()) return;
    if (options.json) {
        std::vector<std::string> texts;
        texts.reserve(damages.size());
        for (const Error& damage : damages) texts.emplace_back(damage.what());
        printResult(set, texts, output);
        output.finish();
    }
    const std::size_t worst = worstOf(damages);
    for (std::size_t i = 0; i < damages.size(); ++i)
        if (i != worst) tell(printableText(damages[i].what()));
    throw Error(damages[worst]);
}

void tellWhole(const VerifiedSet& set, const OutputOptions& options, const MessageOptions& messages,
               Output& output) {
    if (options.json) {
        printResult(set, {}, output);
        return;
    }
    if (messages.quiet) return;
    const std::string summary = printablePath(set.file) + ": " + countText(set) + ", all whole";
    // Where missing paths or a table of them are printed, nothing else is.
    if (set.missingCount)
        tell(summary + ", " + groupDigits(*set.missingCount) + " missing on disk");
    else if (options.csv)
        tell(summary);
    else
        output.line(summary);
}

}  // namespace zqpaths::program
