#include "zqpaths/set/SetStatistics.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numeric>
#include <set>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/Image.hpp"
#include "compressedpaths/store/Hashing.hpp"
#include "zqpaths/set/OpenedSet.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

using compressedpaths::FolderId;
using compressedpaths::HuffmanPathTree;
using compressedpaths::image::Part;

const std::u16string kNoFolderName(kNoFolder.begin(), kNoFolder.end());

/// The folders of all segments, each known by its name and the folder that it is in, so that it is
/// the same in every segment: by a hash of 64 bits, two folders of one hash pass for one.
class Folders {
public:
    static constexpr std::size_t kRoot = 0;

    explicit Folders(const OpenedSet& opened) : opened_(opened), folders_(1) {}

    /// The folders of a segment and how many files it has in each.
    void add(std::size_t segment, const HuffmanPathTree& set) {
        std::vector<std::size_t> places(set.folderCount(), kRoot);
        for (std::size_t id = 1; id < places.size(); ++id) {
            const FolderId folder{static_cast<std::uint32_t>(id)};
            // A parent comes before its folders, unless the image is damaged.
            const auto parent = std::min(static_cast<std::size_t>(set.parentOf(folder)), id - 1);
            places[id] = findOrAdd(places[parent], {segment, folder}, set.nameOf(folder));
        }
        if (set.size() == 0) return;
        set.forEachEntry({1, set.size()},
                         [&](FolderId folder, HuffmanPathTree::NumberRange numbers) {
                             ++entryCount_;
                             folders_[places.at(static_cast<std::size_t>(folder))].fileCount +=
                                 numbers.last - numbers.first + 1;
                         });
    }

    void fill(SetStatistics& statistics, std::size_t folderLimit) const {
        statistics.entryCount = entryCount_;
        for (const Folder& folder : folders_) {
            if (folder.depth > 0) ++statistics.folderCount;
            statistics.widest = std::max(statistics.widest, folder.fileCount + folder.childCount);
            statistics.depthSum += (folder.depth + 1) * folder.fileCount;
            if (folder.fileCount > 0)
                statistics.depth = std::max(statistics.depth, folder.depth + 1);
        }
        findLargest(statistics, folderLimit);
    }

private:
    /// Where a folder was met first.
    struct Source {
        std::size_t segment = 0;
        FolderId id{};
    };

    struct Folder {
        Source source;
        std::size_t parent = kRoot;
        std::uint64_t depth = 0;  // names from the top to it; none for that of no folder
        std::uint64_t fileCount = 0;
        std::uint64_t childCount = 0;  // folders
    };

    std::size_t findOrAdd(std::size_t parent, const Source& source, const std::u16string& name) {
        // Seeds that lie close together do not tell short names apart: the parent is mixed in
        // after.
        const std::uint64_t nameHash = compressedpaths::hashOf(
            name.data(), name.size() * sizeof(char16_t), compressedpaths::processSeed());
        const std::uint64_t hash =
            compressedpaths::hashOf(static_cast<std::uint32_t>(parent), 0, nameHash);
        const auto [place, isNew] = places_.try_emplace(hash, folders_.size());
        if (isNew) {
            const std::uint64_t depth = folders_[parent].depth + (name == kNoFolderName ? 0 : 1);
            folders_.push_back({source, parent, depth});
            ++folders_[parent].childCount;
        }
        return place->second;
    }

    void findLargest(SetStatistics& statistics, std::size_t limit) const {
        std::vector<std::size_t> order(folders_.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        const auto isLarger = [this](std::size_t a, std::size_t b) {
            return std::pair(folders_[b].fileCount, a) < std::pair(folders_[a].fileCount, b);
        };
        const auto end = order.begin() + static_cast<std::ptrdiff_t>(std::min(limit, order.size()));
        std::partial_sort(order.begin(), end, order.end(), isLarger);
        for (auto place = order.begin(); place != end && folders_[*place].fileCount > 0; ++place)
            statistics.largestFolders.push_back({textOf(*place), folders_[*place].fileCount});
    }

    std::string textOf(std::size_t place) const {
        std::vector<std::string> names;
        for (; place != kRoot; place = folders_[place].parent) {
            const Source& source = folders_[place].source;
            names.emplace_back();
            appendBytes(opened_.segments()[source.segment].set().nameOf(source.id), names.back());
        }
        std::string text;
        for (; !names.empty(); names.pop_back()) appendToFolder(names.back(), text);
        return text;
    }

    const OpenedSet& opened_;
    std::vector<Folder> folders_;
    std::unordered_map<std::uint64_t, std::size_t> places_;  // of folders, by their hashes
    std::uint64_t entryCount_ = 0;
};

/// The lengths of the code words of a coding tree, its leaves in pre-order.
std::vector<unsigned> codeLengths(const std::vector<bool>& shape) {
    std::vector<unsigned> lengths;
    std::vector<unsigned> ahead{0};  // depths of the nodes that come, the next one last
    for (std::size_t i = 0; i < shape.size() && !ahead.empty(); ++i) {
        const unsigned depth = ahead.back();
        ahead.pop_back();
        if (shape[i])
            lengths.push_back(depth);
        else
            ahead.insert(ahead.end(), 2, depth + 1);
    }
    return lengths;
}

/// Adds what the frequencies say, or forgets what was known where a segment has none.
void addCode(const HuffmanPathTree& set, SetStatistics& statistics,
             std::set<char16_t>& characters) {
    const std::u16string leaves = set.getTreeString();
    characters.insert(leaves.begin(), leaves.end());
    const std::vector<unsigned> lengths = codeLengths(set.getBoolTree());
    const std::vector<double> frequencies = set.getFrequencies();
    double count = 0;
    double bits = 0;
    for (std::size_t i = 0; i < std::min(lengths.size(), frequencies.size()); ++i) {
        count += frequencies[i];
        bits += frequencies[i] * lengths[i];
    }
    const bool isKnown = count > 0 && frequencies.size() == lengths.size();
    if (!isKnown || !statistics.codedCount) {
        statistics.codedCount.reset();
        statistics.codedBits.reset();
        return;
    }
    *statistics.codedCount += static_cast<std::uint64_t>(std::llround(count));
    *statistics.codedBits += static_cast<std::uint64_t>(std::llround(bits));
}

/// The header of an image that has been opened.
compressedpaths::image::Header headerOf(std::span<const std::byte> image) {
    compressedpaths::image::Header header;
    std::memcpy(&header, image.data(), sizeof header);
    return header;
}

void addImage(std::span<const std::byte> image, SetStatistics::Bytes& bytes) {
    const compressedpaths::image::Header header = headerOf(image);
    const auto sizeOf = [&header](std::initializer_list<Part> parts) {
        std::uint64_t size = 0;
        for (const Part part : parts) size += header[part].byteSize;
        return size;
    };
    const std::uint64_t before = bytes.all();
    bytes.names += sizeOf({Part::kNames});
    bytes.folders += sizeOf({Part::kFolders, Part::kFormerFiles});
    bytes.index += sizeOf({Part::kEntryBytes, Part::kEntryBlocks, Part::kUnpairedCounts,
                           Part::kUnpairedPlaces, Part::kRepeatedPaths, Part::kRepeatedOrder});
    bytes.orders += sizeOf({Part::kFoldersByName, Part::kEntriesByFolder});
    bytes.code +=
        sizeOf({Part::kShape, Part::kLeaves, Part::kFrequencies, Part::kPagesOfWords, Part::kWords,
                Part::kLongWords, Part::kLongBits, Part::kSteps, Part::kBranches});
    bytes.sums += image.size() - (bytes.all() - before);
}

}  // namespace

SetStatistics statisticsOf(const PathSet& set, std::size_t folderLimit) {
    const OpenedSet& opened = openedSetOf(set);
    SetStatistics statistics;
    statistics.pathCount = set.size();
    statistics.segmentCount = opened.segments().size();
    statistics.codedCount = statistics.codedBits = 0;
    Folders folders(opened);
    std::set<char16_t> characters;
    for (std::size_t i = 0; i < opened.segments().size(); ++i) {
        const Segment& segment = opened.segments()[i];
        statistics.textSize += segment.entry().textSize;
        segment.read([&](const HuffmanPathTree& paths) {
            folders.add(i, paths);
            addCode(paths, statistics, characters);
        });
        if (segment.entry().form == SegmentForm::kPacked) {
            ++statistics.packedCount;
            statistics.bytes.packed += segment.entry().size;
        } else {
            addImage(opened.file().bytesOf(segment.entry()), statistics.bytes);
        }
    }
    statistics.characterCount = characters.size();
    folders.fill(statistics, folderLimit);
    return statistics;
}

}  // namespace zqpaths
