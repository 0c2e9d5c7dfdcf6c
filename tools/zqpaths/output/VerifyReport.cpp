#include "tools/zqpaths/output/VerifyReport.hpp"

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
    object.add("whole", damages.empty());
    object.addNames("damages", "damageBytes", damages);
    if (set.missingCount) object.add("missing", *set.missingCount);
    output.line(object);
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
    for (std::size_t i = 0; i + 1 < damages.size(); ++i) tell(printableText(damages[i].what()));
    throw Error(damages.back());
}

void tellWhole(const VerifiedSet& set, const OutputOptions& options, const MessageOptions& messages,
               Output& output) {
    if (options.json) {
        printResult(set, {}, output);
        return;
    }
    if (messages.quiet) return;
    const std::string summary = printablePath(set.file) + ": " + groupDigits(set.pathCount) +
                                (set.pathCount == 1 ? " path" : " paths") + ", all whole";
    // Where missing paths or a table of them are printed, nothing else is.
    if (set.missingCount)
        tell(summary + ", " + groupDigits(*set.missingCount) + " missing on disk");
    else if (options.csv)
        tell(summary);
    else
        output.line(summary);
}

}  // namespace zqpaths::program
