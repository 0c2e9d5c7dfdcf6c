#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/output/SetReport.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kLabelWidth = 14;
constexpr std::size_t kFigureWidth = 20;
constexpr std::size_t kBarWidth = 30;

std::string figureLine(const char* label, const std::string& figure, const std::string& remark) {
    std::string line = "  " + leftAligned(label, kLabelWidth) + rightAligned(figure, kFigureWidth);
    if (!remark.empty()) line += "  " + remark;
    return line + '\n';
}

std::string counts(const SetReport& report) {
    const SetStatistics& set = report.statistics;
    std::string text = figureLine("paths", groupDigits(set.pathCount), "");
    if (report.goneCount > 0) text += figureLine("gone", groupDigits(report.goneCount), "of them");
    text += figureLine("folders", groupDigits(set.folderCount), "");
    text += figureLine("characters", groupDigits(set.characterCount), "");
    const bool isKnown = set.codedCount && *set.codedCount > 0;
    text += figureLine(
        "bits each", isKnown ? fixedPoint(ratio(*set.codedBits, *set.codedCount), 2) : "unknown",
        isKnown ? "on average, " + groupDigits(*set.codedCount) + " characters of names"
                : "packed sets keep no frequencies");
    return text;
}

/// What the file takes, what opening it takes and what then stays in memory, in one line.
std::string inUse(const SetReport& report, SizeUnits units) {
    const double opened =
        report.opening.count() + report.firstPath.value_or(SetReport::Microseconds{}).count();
    return "  " + sizeText(report.fileSize, units) + " on disk, the first path after " +
           fixedPoint(opened, 0) + " microseconds, then " +
           (report.residentSize
                ? sizeText(*report.residentSize + report.allocatedSize, units) + " in memory\n"
                : "an unknown amount in memory\n");
}

std::string sizes(const SetReport& report, SizeUnits units) {
    const SetStatistics& set = report.statistics;
    return figureLine("text", sizeText(set.textSize, units), "as a list") +
           figureLine("saved", sizeText(report.fileSize, units),
                      percent(report.fileSize, set.textSize) + " of the text, " +
                          fixedPoint(ratio(report.fileSize, set.pathCount), 2) + " bytes a path") +
           figureLine("memory",
                      report.residentSize ? sizeText(*report.residentSize, units) : "unknown",
                      "of the file, shared by all who read it, and " +
                          sizeText(report.allocatedSize, units) + " besides");
}

std::string shape(const SetStatistics& set) {
    return figureLine(
               "depth", groupDigits(set.depth),
               "names, " + fixedPoint(ratio(set.depthSum, set.pathCount), 1) + " on average") +
           // The paths at the top are in no folder, or in one that has no name.
           figureLine(
               "fan-out", groupDigits(set.widest),
               "names in the widest folder, " +
                   fixedPoint(ratio(set.pathCount + set.folderCount, set.folderCount + 1), 1) +
                   " on average");
}

std::string opening(const SetReport& report) {
    const SetStatistics& set = report.statistics;
    std::string text = figureLine(
        "segments", groupDigits(set.segmentCount),
        set.packedCount > 0 ? groupDigits(set.packedCount) + " of them packed" : "images");
    const std::string first =
        report.firstPath ? ", the first path " + fixedPoint(report.firstPath->count(), 0) : "";
    text += figureLine("opening", fixedPoint(report.opening.count(), 0), "microseconds" + first);
    return text;
}

/// Of a set of sets.
std::string files(const SetReport& report) {
    const auto& [count, missingCount, missingPathCount] = report.files;
    return figureLine("files", groupDigits(count),
                      missingCount == 0 ? "all there"
                                        : groupDigits(missingCount) + " of them missing, with " +
                                              groupDigits(missingPathCount) + " of the paths");
}

std::string barLine(const std::string& label, std::uint64_t value, std::uint64_t whole,
                    const DrawingStyle& style, SizeUnits units) {
    return "  " + leftAligned(label, kLabelWidth) +
           rightAligned(sizeText(value, units), kFigureWidth) + "  " +
           bar(ratio(value, whole), kBarWidth, style) + rightAligned(percent(value, whole), 8) +
           '\n';
}

std::string savedBytes(const SetReport& report, const DrawingStyle& style, SizeUnits units) {
    const SetStatistics::Bytes& bytes = report.statistics.bytes;
    std::string text = "\nwhere the saved bytes go\n";
    const std::array<std::pair<const char*, std::uint64_t>, 7> parts{
        {{"names", bytes.names},
         {"folders", bytes.folders},
         {"index", bytes.index},
         {"orders", bytes.orders},
         {"code", bytes.code},
         {"packed", bytes.packed},
         {"file itself", bytes.sums + report.fileSize - std::min(bytes.all(), report.fileSize)}}};
    for (const auto& [label, size] : parts)
        if (size > 0) text += barLine(label, size, report.fileSize, style, units);
    return text;
}

std::string largestFolders(const SetStatistics& set, const DrawingStyle& style) {
    const std::vector<SetStatistics::Folder>& folders = set.largestFolders;
    if (folders.empty()) return "";
    std::string text = "\nlargest folders, by files\n";
    for (const SetStatistics::Folder& folder : folders) {
        text += rightAligned(groupDigits(folder.fileCount), kFigureWidth) + "  " +
                bar(ratio(folder.fileCount, folders.front().fileCount), kBarWidth, style) + "  " +
                (folder.name.empty() ? "(no folder)" : printablePath(folder.name)) + '\n';
    }
    return text;
}

}  // namespace

std::string reportText(const SetReport& report, const DrawingStyle& style, SizeUnits units) {
    const SetStatistics& set = report.statistics;
    return printablePath(report.file) + '\n' + inUse(report, units) + counts(report) +
           sizes(report, units) + shape(set) + (report.isSetOfSets ? files(report) : "") +
           opening(report) + savedBytes(report, style, units) + largestFolders(set, style);
}

}  // namespace zqpaths::program
