#include "tools/zqpaths/tree/TreeText.hpp"

#include <algorithm>
#include <utility>

#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kPercentWidth = 9;
constexpr std::size_t kBarWidth = 20;
constexpr std::size_t kWideEnough = 72;  // for all columns; below it there is no bar
const std::string kRestColour = "2";

std::string countOf(std::uint64_t count, const std::string& thing) {
    return groupDigits(count) + ' ' + thing + (count == 1 ? "" : "s");
}

}  // namespace

TreeText::TreeText(std::string topName, std::uint64_t whole, std::optional<std::size_t> width,
                   const DrawingStyle& style, NameColours colours)
    : topName_(std::move(topName)),
      whole_(whole),
      width_(width),
      style_(style),
      colours_(std::move(colours)),
      figureWidth_(groupDigits(whole).size()),
      barWidth_(width && *width < kWideEnough ? 0 : kBarWidth) {}

std::string TreeText::lineOf(const TreeLine& line) {
    const std::string figures = figuresOf(line);
    const std::string branches = branchesOf(line);
    if (!width_) return figures + branches + coloured(nameOf(line), colourOf(line), style_) + '\n';

    // The figures have a cell for each character but for the bar and its colours.
    const std::size_t taken =
        figureWidth_ + kPercentWidth + (barWidth_ > 0 ? barWidth_ + 2 : 0) + 2;
    const std::size_t room = *width_ - std::min(*width_, taken);
    const std::size_t indent = 4 * static_cast<std::size_t>(line.level);
    if (indent >= room) return figures + cutToCells(branches, room, style_) + '\n';
    const std::string name = cutToCells(nameOf(line), room - indent, style_);
    return figures + branches + coloured(name, colourOf(line), style_) + '\n';
}

std::string TreeText::figuresOf(const TreeLine& line) const {
    const bool isCounted = line.kind != TreeLine::Kind::kFile;
    const std::uint64_t count = line.totals.filesBelow;
    std::string figures = rightAligned(isCounted ? groupDigits(count) : "", figureWidth_) +
                          rightAligned(isCounted ? percent(count, whole_) : "", kPercentWidth) +
                          "  ";
    if (barWidth_ > 0)
        figures += bar(isCounted ? ratio(count, whole_) : 0, barWidth_, style_) + "  ";
    return figures;
}

std::string TreeText::branchesOf(const TreeLine& line) {
    const auto level = static_cast<std::size_t>(line.level);
    isLast_.resize(level + 1);
    isLast_[level] = line.isLast;
    std::string branches;
    for (std::size_t above = 1; above < level; ++above) {
        if (style_.hasBlocks)
            branches += isLast_[above] ? "    " : "│   ";
        else
            branches += isLast_[above] ? "    " : "|   ";
    }
    if (level == 0) return branches;
    if (style_.hasBlocks) return branches + (line.isLast ? "└── " : "├── ");
    return branches + (line.isLast ? "`-- " : "|-- ");
}

std::string TreeText::nameOf(const TreeLine& line) const {
    if (line.kind != TreeLine::Kind::kRest)
        return line.name.empty() ? topName_ : printableText(line.name);
    std::string text = style_.hasBlocks ? "… " : "... ";
    const FolderTotals::Totals& rest = line.totals;
    if (rest.foldersIn > 0) text += countOf(rest.foldersIn, "more folder");
    if (rest.foldersIn > 0 && rest.filesIn > 0) text += ", ";
    if (rest.filesIn > 0) text += countOf(rest.filesIn, "file");
    return text;
}

const std::string& TreeText::colourOf(const TreeLine& line) const {
    if (line.kind == TreeLine::Kind::kRest) return kRestColour;
    return line.kind == TreeLine::Kind::kFile ? colours_.ofFile(line.name) : colours_.ofFolder();
}

}  // namespace zqpaths::program
