#include "zqpaths/totals/SetFolders.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include "compressedpaths/store/Hashing.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

using compressedpaths::FolderId;
using compressedpaths::HuffmanPathTree;

const std::u16string kNoFolderName(kNoFolder.begin(), kNoFolder.end());

/// A component without the separators at its end, of which one is left if there is nothing else.
template <class Character>
std::size_t lengthOfName(std::basic_string_view<Character> component) {
    const std::size_t last = component.find_last_not_of(Character{kSeparator});
    if (last != component.npos) return last + 1;
    return std::min<std::size_t>(component.size(), 1);
}

}  // namespace

void SetFolders::add(std::uint64_t place, const PinnedSegment& segment,
                     const HuffmanPathTree& set) {
    set.requireOwnNames();
    std::vector<std::size_t> places(set.folderCount(), kTop);
    for (std::size_t id = 1; id < places.size(); ++id) {
        const FolderId folder{static_cast<std::uint32_t>(id)};
        // A parent comes before its folders, unless the image is damaged.
        const auto parent = std::min(static_cast<std::size_t>(set.parentOf(folder)), id - 1);
        places[id] = findOrAdd(places[parent], static_cast<std::uint32_t>(place), folder,
                               set.nameOf(folder));
    }
    if (set.size() == 0) return;
    const bool isAnyGone = opened_.parts().goneCount() > 0;
    set.forEachEntry({1, set.size()}, [&](FolderId id, HuffmanPathTree::NumberRange numbers) {
        ++entryCount_;
        Folder& folder = folders_[places.at(static_cast<std::size_t>(id))];
        const std::uint64_t count = numbers.last - numbers.first + 1;
        folder.fileCount += count;
        if (!isAnyGone) return;
        const std::uint64_t below = segment.part().goneBelow(segment->numberOf(numbers.first));
        const std::uint64_t upTo = segment.part().goneBelow(segment->numberOf(numbers.last) + 1);
        folder.goneCount += std::min(upTo - std::min(upTo, below), count);  // marks may be damaged
    });
}

void SetFolders::finish() {
    places_ = {};
    folders_.shrink_to_fit();
}

std::size_t SetFolders::findOrAdd(std::size_t parent, std::uint32_t segment, FolderId id,
                                  const std::u16string& name) {
    if (name == kNoFolderName) return parent;
    // The parent in the seed would not do: for short texts, XXH3 takes seed and text by exclusive
    // or, and one changes what the other does.
    const std::uint64_t seed = compressedpaths::processSeed();
    const std::array<std::uint64_t, 2> key{
        parent, compressedpaths::hashOf(
                    name.data(), lengthOfName(std::u16string_view(name)) * sizeof(char16_t), seed)};
    const std::uint64_t hash = compressedpaths::hashOf(key.data(), sizeof key, seed);
    const auto [place, isNew] = places_.try_emplace(hash, folders_.size());
    if (isNew) {
        folders_.push_back({segment, id, parent, folders_[parent].depth + 1});
        ++folders_[parent].childCount;
    }
    return place->second;
}

std::string SetFolders::componentOf(std::size_t place) const {
    const Folder& folder = folders_[place];
    const PinnedSegment segment = opened_.segment(folder.segment);
    std::string component;
    segment->read(
        [&](const HuffmanPathTree& set) { appendBytes(set.nameOf(folder.id), component); });
    return component;
}

std::string SetFolders::nameOf(std::size_t place) const {
    if (place == kTop) return {};
    std::string name = componentOf(place);
    name.resize(lengthOfName(std::string_view(name)));
    return name;
}

std::string SetFolders::textOf(std::size_t place) const {
    std::vector<std::string> components;
    for (; place != kTop; place = folders_[place].parent) components.push_back(componentOf(place));
    std::string text;
    for (; !components.empty(); components.pop_back()) appendToFolder(components.back(), text);
    return text;
}

}  // namespace zqpaths
