#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "tools/zqpaths/Figures.hpp"
#include "tools/zqpaths/FolderText.hpp"
#include "tools/zqpaths/PrintablePath.hpp"
#include "tools/zqpaths/SetReport.hpp"

namespace zqpaths {
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
    const TrieOutline& trie = report.form.trie;
    std::string text = figureLine("paths", groupDigits(report.pathCount), "");
    text += figureLine("folders", groupDigits(trie.folderCount), "");
    // Each path ends at a node; one that ends at no file ends at a folder or where another ends.
    if (report.pathCount > trie.fileCount)
        text += figureLine("not files", groupDigits(report.pathCount - trie.fileCount),
                           "paths that are folders as well, or there before");
    text += figureLine("characters", groupDigits(report.characterCount), "");
    text += figureLine(
        "bits each", report.bitsACharacter ? fixedPoint(*report.bitsACharacter, 2) : "unknown",
        report.codedCount
            ? "on average, " + groupDigits(*report.codedCount) + " characters of names"
            : "the set came without frequencies");
    text += figureLine("text", groupDigits(report.textSize), "bytes as a list");
    text += figureLine("saved", groupDigits(report.fileSize),
                       "bytes, " + percent(report.fileSize, report.textSize) + " of the text, " +
                           fixedPoint(ratio(report.fileSize, report.pathCount), 2) + " a path");
    return text;
}

std::string shape(const SetReport& report) {
    const TrieOutline& trie = report.form.trie;
    std::string text = figureLine(
        "depth", groupDigits(trie.depth),
        "names, " + fixedPoint(ratio(trie.fileDepthSum, trie.fileCount), 1) + " on average");
    // The root has children as well.
    text +=
        figureLine("fan-out", groupDigits(trie.widest),
                   "names in the widest folder, " +
                       fixedPoint(ratio(trie.nodeCount, trie.folderCount + 1), 1) + " on average");
    return text;
}

std::string barLine(const std::string& label, std::uint64_t value, std::uint64_t whole,
                    const ReportStyle& style) {
    return "  " + leftAligned(label, kLabelWidth) + rightAligned(groupDigits(value), kFigureWidth) +
           "  " + bar(ratio(value, whole), style) + rightAligned(percent(value, whole), 8) + '\n';
}

std::string savedBytes(const SetReport& report, const ReportStyle& style) {
    const SavedForm& form = report.form;
    const std::uint64_t sections = form.shape.savedSize + form.structure.savedSize +
                                   form.keys.savedSize + form.index.savedSize;
    const std::uint64_t known = sections + report.characterBytes;
    std::string text = "\nwhere the saved bytes go\n";
    const std::array<std::pair<const char*, std::uint64_t>, 6> parts{
        {{"names", form.keys.savedSize},
         {"structure", form.structure.savedSize},
         {"index", form.index.savedSize},
         {"code shape", form.shape.savedSize},
         {"characters", report.characterBytes},
         {"file itself", report.fileSize - std::min(known, report.fileSize)}}};
    for (const auto& [label, size] : parts) text += barLine(label, size, report.fileSize, style);
    return text;
}

std::string largestFolders(const SetReport& report, const ReportStyle& style) {
    const std::vector<SavedForm::Folder>& folders = report.form.largestFolders;
    if (folders.empty()) return "";
    std::string text = "\nlargest folders, by files\n";
    for (const SavedForm::Folder& folder : folders) {
        const std::string name = folderText(folder.components);
        text += rightAligned(groupDigits(folder.fileCount), kFigureWidth) + "  " +
                bar(ratio(folder.fileCount, folders.front().fileCount), style) + "  " +
                (name.empty() ? "(no folder)" : printablePath(name)) + '\n';
    }
    return text;
}

}  // namespace

std::string reportText(const SetReport& report, const ReportStyle& style) {
    return printablePath(report.file) + '\n' + counts(report) + shape(report) +
           savedBytes(report, style) + largestFolders(report, style);
}

}  // namespace zqpaths
