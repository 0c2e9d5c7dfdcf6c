#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/output/SetReport.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kLabelWidth = 14;
constexpr std::size_t kFigureWidth = 16;
constexpr std::size_t kBarWidth = 30;
constexpr unsigned kEighths = 8;
constexpr std::array<const char*, kEighths> kPartBlocks{"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
constexpr const char* kWholeBlock = "█";
constexpr const char* kBarColour = "\x1b[36m";
constexpr const char* kNoColour = "\x1b[0m";

std::string leftAligned(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string rightAligned(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

double ratio(double part, double whole) {
    return whole > 0 ? part / whole : 0;
}

double ratio(std::uint64_t part, std::uint64_t whole) {
    return ratio(static_cast<double>(part), static_cast<double>(whole));
}

std::string percent(std::uint64_t part, std::uint64_t whole) {
    return fixedPoint(100 * ratio(part, whole), 1) + " %";
}

/// A bar as long as `share`, from 0 to 1, of the whole width, padded to it.
std::string bar(double share, const ReportStyle& style) {
    const unsigned steps = style.hasBlocks ? kEighths : 1;
    const auto filled = static_cast<std::size_t>(
        std::lround(std::clamp(share, 0.0, 1.0) * static_cast<double>(kBarWidth * steps)));
    const std::size_t whole = filled / steps;
    const std::size_t part = filled % steps;
    std::string text;
    for (std::size_t i = 0; i < whole; ++i) text += style.hasBlocks ? kWholeBlock : "#";
    text += kPartBlocks[part];
    if (style.hasColours && filled > 0) text = kBarColour + text + kNoColour;
    return text + std::string(kBarWidth - whole - (part > 0 ? 1 : 0), ' ');
}

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

std::string sizes(const SetReport& report) {
    const SetStatistics& set = report.statistics;
    return figureLine("text", groupDigits(set.textSize), "bytes as a list") +
           figureLine("saved", groupDigits(report.fileSize),
                      "bytes, " + percent(report.fileSize, set.textSize) + " of the text, " +
                          fixedPoint(ratio(report.fileSize, set.pathCount), 2) + " a path");
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

std::string barLine(const std::string& label, std::uint64_t value, std::uint64_t whole,
                    const ReportStyle& style) {
    return "  " + leftAligned(label, kLabelWidth) + rightAligned(groupDigits(value), kFigureWidth) +
           "  " + bar(ratio(value, whole), style) + rightAligned(percent(value, whole), 8) + '\n';
}

std::string savedBytes(const SetReport& report, const ReportStyle& style) {
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
        if (size > 0) text += barLine(label, size, report.fileSize, style);
    return text;
}

std::string largestFolders(const SetStatistics& set, const ReportStyle& style) {
    const std::vector<SetStatistics::Folder>& folders = set.largestFolders;
    if (folders.empty()) return "";
    std::string text = "\nlargest folders, by files\n";
    for (const SetStatistics::Folder& folder : folders) {
        text += rightAligned(groupDigits(folder.fileCount), kFigureWidth) + "  " +
                bar(ratio(folder.fileCount, folders.front().fileCount), style) + "  " +
                (folder.name.empty() ? "(no folder)" : printablePath(folder.name)) + '\n';
    }
    return text;
}

}  // namespace

std::string reportText(const SetReport& report, const ReportStyle& style) {
    const SetStatistics& set = report.statistics;
    return printablePath(report.file) + '\n' + counts(report) + sizes(report) + shape(set) +
           opening(report) + savedBytes(report, style) + largestFolders(set, style);
}

}  // namespace zqpaths::program
