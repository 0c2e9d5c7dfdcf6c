#include "tools/zqpaths/sources/SourceReport.hpp"

#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

std::string counted(std::uint64_t count, const char* one, const char* many) {
    return groupDigits(count) + ' ' + (count == 1 ? one : many);
}

void tellLeftOut(const LeftOutNames& leftOut) {
    const auto tellIfAny = [](std::uint64_t count, const char* one, const char* many) {
        if (count > 0) tell("left out " + counted(count, one, many));
    };
    tellIfAny(leftOut.hidden, "name that begins with a dot, --hidden takes it",
              "names that begin with a dot, --hidden takes them");
    tellIfAny(leftOut.excluded, "name by --exclude", "names by --exclude");
    tellIfAny(leftOut.ofOtherTypes, "name by --type", "names by --type");
    tellIfAny(leftOut.tooDeep, "name by --max-depth", "names by --max-depth");
    tellIfAny(leftOut.onOtherFileSystems, "directory by --one-file-system",
              "directories by --one-file-system");
}

}  // namespace

SourceReport& SourceReport::operator+=(const SourceReport& next) {
    leftOut += next.leftOut;
    if (unreadableCount == 0) firstUnreadable = next.firstUnreadable;
    unreadableCount += next.unreadableCount;
    return *this;
}

void SourceReport::addUnreadable(std::string_view path, std::string_view reason,
                                 const UnreadableVisitor& onUnreadable) {
    const std::string text = printablePath(path).append(": ").append(reason);
    if (unreadableCount++ == 0) firstUnreadable = text;
    if (onUnreadable) onUnreadable(text);
}

ExitStatus statusAfter(const SourceReport& report, const SourceOptions& options,
                       const MessageOptions& messages) {
    if (!messages.quiet) tellLeftOut(report.leftOut);
    const std::uint64_t count = report.unreadableCount;
    if (count == 0) return ExitStatus::kDone;
    std::string text = counted(count, "directory", "directories") + " could not be read";
    if (!options.verbose && count == 1) text += ": " + report.firstUnreadable;
    if (!options.verbose && count > 1)
        text += ", the first " + report.firstUnreadable + "; --verbose tells all";
    tell(text);
    return options.ignoreUnreadable ? ExitStatus::kDone : ExitStatus::kFailed;
}

}  // namespace zqpaths::program
