#include "zqpaths/totals/FolderTotals.hpp"

#include <algorithm>
#include <numeric>
#include <utility>

#include "zqpaths/set/OpenedSet.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/totals/SetFolders.hpp"

namespace zqpaths {
class FolderTotals::Work {
public:
    explicit Work(const PathSet& set) : set_(set), folders_(openedSetOf(set)) {
        forEachSegment(openedSetOf(set), [&](std::uint64_t place, const PinnedSegment& segment) {
            segment->read([&](const auto& paths) { folders_.add(place, segment, paths); });
        });
        folders_.finish();
        addUp();
    }

    const std::vector<SetFolders::Folder>& folders() const noexcept { return folders_.all(); }
    std::string nameOf(Place place) const { return folders_.nameOf(place); }

    const Totals& of(Place place) const noexcept { return nodes_[place].totals; }

    std::vector<Place> foldersIn(Place place) const {
        std::vector<Place> inside;
        for (Place next = nodes_[place].firstIn; next != kTop; next = nodes_[next].nextBeside)
            if (of(next).filesBelow > 0) inside.push_back(next);
        return inside;
    }

private:
    struct Node {
        Totals totals;
        Place firstIn = kTop;     // the first of the folders in it, the top if there is none
        Place nextBeside = kTop;  // the next of those in the same folder
    };

    /// A folder comes after the one that it is in, so that all below it has been added up when the
    /// way back from the end comes to it, and those in a folder are linked in their order. A folder
    /// without any path is none.
    void addUp() {
        nodes_.resize(folders().size());
        for (Place place = nodes_.size(); place-- > 0;) {
            Totals& totals = nodes_[place].totals;
            totals.filesIn = folders()[place].presentCount();
            totals.filesBelow += totals.filesIn;
            if (place == kTop || totals.filesBelow == 0) continue;
            Node& parent = nodes_[folders()[place].parent];
            parent.totals.filesBelow += totals.filesBelow;
            parent.totals.foldersIn += 1;
            parent.totals.foldersBelow += totals.foldersBelow + 1;
            nodes_[place].nextBeside = std::exchange(parent.firstIn, place);
        }
    }

    const PathSet set_;  // what the folders are read from
    SetFolders folders_;
    std::vector<Node> nodes_;
};

FolderTotals::FolderTotals(const PathSet& set) : work_(std::make_unique<const Work>(set)) {}
FolderTotals::FolderTotals(FolderTotals&&) noexcept = default;
FolderTotals& FolderTotals::operator=(FolderTotals&&) noexcept = default;
FolderTotals::~FolderTotals() = default;

const FolderTotals::Totals& FolderTotals::of(Place folder) const noexcept {
    return work_->of(folder);
}

FolderTotals::Place FolderTotals::parentOf(Place folder) const noexcept {
    return work_->folders()[folder].parent;
}

std::vector<FolderTotals::Place> FolderTotals::foldersIn(Place folder) const {
    return work_->foldersIn(folder);
}

std::string FolderTotals::nameOf(Place folder) const {
    return work_->nameOf(folder);
}

std::string FolderTotals::pathOf(Place folder) const {
    std::vector<std::string> names;
    for (; folder != kTop; folder = parentOf(folder)) names.push_back(nameOf(folder));
    std::string path;
    for (; !names.empty(); names.pop_back()) appendName(names.back(), path);
    return path;
}

std::optional<FolderTotals::Place> FolderTotals::find(std::string_view folder) const {
    const std::string path = plainFolder(folder);
    std::string_view left = path;
    Place place = kTop;
    while (!left.empty()) {
        // The root is a name of its own, to which no separator belongs.
        const bool isRoot = place == kTop && left.front() == kSeparator;
        const std::string_view name = left.substr(0, isRoot ? 1 : left.find(kSeparator));
        left.remove_prefix(std::min(name.size() + (isRoot ? 0 : 1), left.size()));
        const std::vector<Place> inside = foldersIn(place);
        const auto found = std::ranges::find(inside, name, [this](Place p) { return nameOf(p); });
        if (found == inside.end()) return std::nullopt;
        place = *found;
    }
    return place;
}

std::vector<std::uint64_t> FolderTotals::filesByDepth() const {
    std::vector<std::uint64_t> counts;
    for (const SetFolders::Folder& folder : work_->folders()) {
        if (folder.presentCount() == 0) continue;
        const auto depth = static_cast<std::size_t>(folder.depth);
        if (counts.size() <= depth) counts.resize(depth + 1);
        counts[depth] += folder.presentCount();
    }
    return counts;
}

std::vector<FolderTotals::Place> FolderTotals::largest(std::size_t limit) const {
    std::vector<Place> order;
    for (Place place = 0; place < work_->folders().size(); ++place)
        if (of(place).filesBelow > 0) order.push_back(place);
    const auto end = order.begin() + static_cast<std::ptrdiff_t>(std::min(limit, order.size()));
    // Of equal ones the lower place comes first, which a folder has before those in it.
    std::partial_sort(order.begin(), end, order.end(), [this](Place a, Place b) {
        return std::pair(of(b).filesBelow, a) < std::pair(of(a).filesBelow, b);
    });
    order.erase(end, order.end());
    return order;
}

}  // namespace zqpaths
