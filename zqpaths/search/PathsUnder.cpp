#include "zqpaths/search/PathsUnder.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "zqpaths/search/PathScope.hpp"
#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

using compressedpaths::HuffmanPathTree;
using FolderId = HuffmanPathTree::FolderId;
using Folders = std::vector<FolderId>;
using Positions = Segment::Positions;

constexpr FolderId kRoot{0};

/// The names of the components that lead to a folder, without separators; the first one of a path
/// from the root is empty.
std::vector<std::u16string> namesOf(std::string_view folder) {
    std::vector<std::u16string> names;
    if (folder.starts_with(kSeparator)) names.emplace_back();
    while (!folder.empty()) {
        const std::string_view name = folder.substr(0, folder.find(kSeparator));
        if (!name.empty()) appendUtf16(name, names.emplace_back());
        folder.remove_prefix(std::min(name.size() + 1, folder.size()));
    }
    return names;
}

/// Finds what is under a folder in the set of one segment.
class FolderSearch {
public:
    FolderSearch(const HuffmanPathTree& set, const std::vector<std::u16string>& names)
        : set_(set), names_(names) {}

    /// Candidates, ascending: PathScope has the last word on each.
    std::vector<Positions> candidates() const {
        Folders above{kRoot};
        for (std::size_t level = 0; level + 1 < names_.size(); ++level)
            above = foldersNamed(above, names_[level]);
        std::vector<Positions> found;
        appendPositionsBelow(foldersNamed(above, names_.back()), found);
        if (names_.size() == 1) above = withoutFolder();
        appendFilesNamed(above, names_.back(), found);
        std::sort(found.begin(), found.end(),
                  [](const Positions& a, const Positions& b) { return a.first < b.first; });
        return found;
    }

private:
    Folders foldersNamed(const Folders& parents, const std::u16string& name) const {
        Folders found;
        for (const FolderId parent : parents) {
            const Folders inside = set_.foldersNamed(parent, name, u'/');
            found.insert(found.end(), inside.begin(), inside.end());
        }
        return found;
    }

    /// What holds the paths that have no folder.
    Folders withoutFolder() const {
        std::u16string marker;
        appendUtf16(kNoFolder, marker);
        const auto folder = set_.folderOf({marker});
        return folder ? Folders{*folder} : Folders{};
    }

    /// The folder may also be listed as a file of the one that it is in.
    void appendFilesNamed(const Folders& folders, const std::u16string& name,
                          std::vector<Positions>& found) const {
        for (const FolderId folder : folders)
            for (const std::size_t position : set_.numbersNamed(folder, name, u'/'))
                found.push_back({position, position});
    }

    void appendPositionsBelow(const Folders& tops, std::vector<Positions>& found) const {
        Folders all = tops;
        // Where much of the set is below, going through all of it once is faster.
        const std::size_t most = tops.size() + set_.folderCount() / 8;
        for (std::size_t next = 0; next < all.size(); ++next) {
            const Folders inside = set_.foldersIn(all[next]);
            if (inside.size() > most - all.size()) return appendAllBelow(tops, found);
            all.insert(all.end(), inside.begin(), inside.end());
        }
        for (const FolderId folder : all)
            for (const Positions& positions : set_.entriesOf(folder)) found.push_back(positions);
    }

    void appendAllBelow(const Folders& tops, std::vector<Positions>& found) const {
        std::vector<bool> isBelow(set_.folderCount(), false);
        for (const FolderId top : tops) isBelow[static_cast<std::size_t>(top)] = true;
        for (std::uint32_t id = 0; id < isBelow.size(); ++id)
            if (isBelow[static_cast<std::size_t>(set_.parentOf(FolderId{id}))]) isBelow[id] = true;
        set_.forEachEntry({1, set_.size()}, [&](FolderId folder, Positions positions) {
            if (isBelow[static_cast<std::size_t>(folder)]) found.push_back(positions);
        });
    }

    const HuffmanPathTree& set_;
    const std::vector<std::u16string>& names_;
};

/// Some positions, few enough to be read in one go.
struct Slice {
    std::vector<Positions> positions;
    std::uint64_t count = 0;
    std::size_t next = 0;  // of the positions: those before it have been read
};

std::vector<Slice> slicesOf(const std::vector<Positions>& all) {
    std::vector<Slice> slices;
    std::size_t next = 1;  // no position twice, whatever a damaged set says
    for (Positions left : all) {
        left.first = std::max(left.first, next);
        next = std::max(next, left.last + 1);
        while (left.first <= left.last) {
            if (slices.empty() || slices.back().count == kPathsPerPiece) slices.emplace_back();
            Slice& slice = slices.back();
            const std::uint64_t count =
                std::min(kPathsPerPiece - slice.count, std::uint64_t{left.last - left.first + 1});
            slice.positions.push_back({left.first, left.first + count - 1});
            slice.count += count;
            left.first += count;
        }
    }
    return slices;
}

/// False if `visit` has said to stop.
bool visitUnderIn(const Segment& segment, const PathScope& scope,
                  const std::vector<std::u16string>& names, PathVisitor visit) {
    const std::vector<Slice> slices = slicesOf(segment.read(
        [&](const HuffmanPathTree& paths) { return FolderSearch(paths, names).candidates(); }));
    Segment::TextLeft left(segment);
    const auto readMore = [&](Slice& slice) {
        PathBuffer paths;
        for (; slice.next < slice.positions.size() && !paths.isFull(); ++slice.next) {
            Positions& positions = slice.positions[slice.next];
            positions.first =
                segment.forEachPath(positions, [&](std::size_t position, std::string_view path) {
                    left.take(path);
                    if (scope.contains(path)) paths.append(segment.numberOf(position), path);
                    return !paths.isFull();
                });
            if (positions.first <= positions.last) break;
        }
        return paths;
    };
    struct Piece {
        Slice left;
        PathBuffer paths;
    };
    const auto read = [&](std::size_t i) {
        Piece piece{slices[i], {}};
        piece.paths = readMore(piece.left);
        return piece;
    };
    const auto take = [&](Piece piece) {
        while (piece.paths.visit(visit)) {
            if (piece.left.next == piece.left.positions.size()) return true;
            piece.paths = readMore(piece.left);
        }
        return false;
    };
    return makeInOrder(slices.size(), threadsFor(slices.size() * kPathsPerPiece), read, take);
}

}  // namespace

void visitPathsUnder(const OpenedSet& set, std::string_view folder, PathVisitor visit) {
    const PathScope scope{std::string(folder)};
    const std::vector<std::u16string> names = namesOf(folder);
    set.forEachPart([&](const OpenedPart& part) {
        return std::ranges::all_of(part.segments(), [&](const Segment& segment) {
            return visitUnderIn(segment, scope, names, visit);
        });
    });
}

}  // namespace zqpaths
