#include "zqpaths/search/PatternSearch.hpp"

#include <algorithm>
#include <string_view>
#include <utility>

#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kPathsASlice = 16384;

/// True if the name of a file in a folder may begin with a text, which has separators at its end
/// alone then.
bool canBeginFileName(std::string_view text) {
    return !text.empty() && text.front() != kSeparator && folderLength(text) == 0;
}

/// True if a text may begin in `folderText` and end in the name of a file there.
bool canGoOnAfter(std::string_view folderText, std::string_view text) {
    for (std::size_t end = text.find(kSeparator); end != std::string_view::npos;
         end = text.find(kSeparator, end + 1))
        if (canBeginFileName(text.substr(end + 1)) && folderText.ends_with(text.substr(0, end + 1)))
            return true;
    return false;
}

}  // namespace

/// Candidates in ascending order. Neighbours become one.
class PatternSearch::CandidateList {
public:
    explicit CandidateList(bool areNamesCertain) : areNamesCertain_(areNamesCertain) {}

    void append(Positions positions, bool isCertain) {
        if (!list_.empty() && list_.back().isCertain == isCertain &&
            list_.back().positions.last + 1 == positions.first)
            list_.back().positions.last = positions.last;
        else
            list_.push_back({positions, isCertain});
    }
    /// Those of some positions, ascending, that are in a range.
    void appendNamed(const std::vector<std::size_t>& named, Positions range) {
        auto next = std::lower_bound(named.begin(), named.end(), range.first);
        for (; next != named.end() && *next <= range.last; ++next)
            append({*next, *next}, areNamesCertain_);
    }
    std::vector<Candidates> take() { return std::move(list_); }

private:
    bool areNamesCertain_;
    std::vector<Candidates> list_;
};

PatternSearch::PatternSearch(const OpenedPart& part, const Pattern& pattern, PathNumbers among)
    : matching_(*pattern.matching_), among_(among) {
    appendUtf16(matching_.piece.text, piece_);
    // No path holds NUL, but the component of no folder does.
    isAllPiece_ = matching_.fixedText == matching_.piece.text &&
                  matching_.piece.text.find('\0') == std::string::npos;
    for (const Segment& segment : part.segments())
        if (segment.lastNumber() >= among.first && segment.firstNumber() <= among.last)
            segments_.emplace_back(segment);
}

bool PatternSearch::find(PathVisitor visit) const {
    const std::vector<Slice> all = slices();
    return makeInOrder(
        all.size(), threadCount(), [&](std::size_t i) { return matchesIn(all[i]); },
        [&](Matches matches) { return visitMatches(std::move(matches), visit); });
}

bool PatternSearch::findNumbers(const std::function<bool(PathNumbers numbers)>& visit) const {
    const std::vector<Slice> all = slices();
    return makeInOrder(
        all.size(), threadCount(), [&](std::size_t i) { return numbersIn(all[i]); },
        [&](const std::vector<PathNumbers>& ranges) { return std::ranges::all_of(ranges, visit); });
}

std::vector<PatternSearch::Slice> PatternSearch::slices() const {
    std::vector<Slice> slices;
    for (const SearchedSegment& in : segments_) {
        const Segment& segment = *in.segment;
        const std::size_t end = segment.positionOf(std::min(among_.last, segment.lastNumber())) + 1;
        for (std::size_t first = segment.positionOf(std::max(among_.first, segment.firstNumber()));
             first < end;) {
            const std::size_t count = std::min(kPathsASlice, end - first);
            slices.push_back({&in, {first, first + count - 1}});
            first += count;
        }
    }
    return slices;
}

/// Reads matches until there are enough to be visited.
void PatternSearch::readMatches(Matches& matches) const {
    const Segment& segment = *matches.in->segment;
    PathBuffer& paths = matches.paths;
    paths.clear();
    for (; !matches.hasAll() && !paths.isFull(); ++matches.next) {
        auto& [positions, isCertain] = matches.candidates[matches.next];
        positions.first = segment.forEachPath(
            positions, [&, isSure = isCertain](std::size_t position, std::string_view path) {
                matches.in->readText.take(path);
                if (isSure || matching_.matches(path))
                    paths.append(segment.numberOf(position), path);
                return !paths.isFull();
            });
        if (positions.first <= positions.last) break;
    }
}

PatternSearch::Matches PatternSearch::matchesIn(const Slice& slice) const {
    Matches matches{slice.in, candidatesIn(slice)};
    readMatches(matches);
    return matches;
}

bool PatternSearch::visitMatches(Matches matches, PathVisitor visit) const {
    while (matches.paths.visit(visit)) {
        if (matches.hasAll()) return true;
        readMatches(matches);
    }
    return false;
}

std::vector<PathNumbers> PatternSearch::numbersIn(const Slice& slice) const {
    const Segment& segment = *slice.in->segment;
    std::vector<PathNumbers> ranges;
    const auto append = [&](std::size_t first, std::size_t last) {
        const PathNumbers numbers{segment.numberOf(first), segment.numberOf(last)};
        if (!ranges.empty() && ranges.back().last + 1 == numbers.first)
            ranges.back().last = numbers.last;
        else
            ranges.push_back(numbers);
    };
    for (const auto& [positions, isCertain] : candidatesIn(slice)) {
        if (isCertain)
            append(positions.first, positions.last);
        else
            segment.forEachPath(positions, [&](std::size_t position, std::string_view path) {
                slice.in->readText.take(path);
                if (matching_.matches(path)) append(position, position);
            });
    }
    return ranges;
}

/// What may match of a slice, ascending.
std::vector<PatternSearch::Candidates> PatternSearch::candidatesIn(const Slice& slice) const {
    if (piece_.empty()) return {{slice.positions, isAllPiece_}};
    return slice.in->segment->read([&](const PathTree& set) {
        std::vector<std::size_t> named;
        set.forEachNameWith(piece_, slice.positions,
                            [&](std::size_t position) { named.push_back(position); });
        CandidateList list(isAllPiece_);
        const auto& folders =
            slice.in->foldersWithPiece.get([&] { return foldersWithPieceOf(set); });
        if (folders.empty()) {
            list.appendNamed(named, slice.positions);
            return list.take();
        }
        set.forEachEntry(slice.positions, [&](PathTree::FolderId folder, Positions positions) {
            if (folders[static_cast<std::size_t>(folder)])
                appendFilesOfFolder(*slice.in, set, positions, named, list);
            else
                list.appendNamed(named, positions);
        });
        return list.take();
    });
}

PatternSearch::FoldersWithPiece PatternSearch::foldersWithPieceOf(const PathTree& set) const {
    if (matching_.piece.isInName) return {};
    FoldersWithPiece folders = set.foldersNamedWith(piece_);
    for (std::uint32_t id = 0; id < folders.size(); ++id) {
        const auto parent = static_cast<std::size_t>(set.parentOf(PathTree::FolderId{id}));
        if (folders[parent]) folders[id] = true;
    }
    const bool hasAny = std::find(folders.begin(), folders.end(), true) != folders.end();
    return hasAny ? folders : FoldersWithPiece{};
}

/// Files of a folder whose text holds the piece; `named` are those whose names hold it.
void PatternSearch::appendFilesOfFolder(const SearchedSegment& in, const PathTree& set,
                                        Positions positions, const std::vector<std::size_t>& named,
                                        CandidateList& list) const {
    if (isAllPiece_ || !matching_.fixedText) return list.append(positions, isAllPiece_);

    std::string path;
    set.appendText(positions.first, Segment::kSeparatorText, path);
    const std::string_view plainPath = pathOfComponents(path);
    in.foldersText.take(plainPath);
    const std::string_view folderText = plainPath.substr(0, folderLength(plainPath));
    if (folderText.find(*matching_.fixedText) != std::string_view::npos)
        list.append(positions, true);
    else if (canGoOnAfter(folderText, *matching_.fixedText))
        list.append(positions, false);
    else
        list.appendNamed(named, positions);
}

}  // namespace zqpaths
