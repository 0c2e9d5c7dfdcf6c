#include "zqpaths/set/SetStatistics.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numeric>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/Image.hpp"
#include "zqpaths/set/OpenedSet.hpp"
#include "zqpaths/totals/SetFolders.hpp"

namespace zqpaths {
namespace {

using compressedpaths::HuffmanPathTree;
using compressedpaths::image::Part;

/// The folders with most files, most first, of equal ones the one met first.
std::vector<SetStatistics::Folder> largestOf(const SetFolders& folders, std::size_t limit) {
    const std::vector<SetFolders::Folder>& all = folders.all();
    std::vector<std::size_t> order(all.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto isLarger = [&all](std::size_t a, std::size_t b) {
        return std::pair(all[b].fileCount, a) < std::pair(all[a].fileCount, b);
    };
    const auto end = order.begin() + static_cast<std::ptrdiff_t>(std::min(limit, order.size()));
    std::partial_sort(order.begin(), end, order.end(), isLarger);
    std::vector<SetStatistics::Folder> largest;
    for (auto place = order.begin(); place != end && all[*place].fileCount > 0; ++place)
        largest.push_back({folders.textOf(*place), all[*place].fileCount});
    return largest;
}

void fill(SetStatistics& statistics, const SetFolders& folders, std::size_t folderLimit) {
    statistics.entryCount = folders.entryCount();
    statistics.folderCount = folders.all().size() - 1;  // all but the top
    for (const SetFolders::Folder& folder : folders.all()) {
        statistics.widest = std::max(statistics.widest, folder.fileCount + folder.childCount);
        statistics.depthSum += (folder.depth + 1) * folder.fileCount;
        if (folder.fileCount > 0) statistics.depth = std::max(statistics.depth, folder.depth + 1);
    }
    statistics.largestFolders = largestOf(folders, folderLimit);
}

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
    statistics.codedCount = statistics.codedBits = 0;
    SetFolders folders(opened);
    std::set<char16_t> characters;
    forEachSegment(opened, [&](std::uint64_t place, const PinnedSegment& segment) {
        ++statistics.segmentCount;
        statistics.textSize += segment->entry().textSize;
        segment->read([&](const HuffmanPathTree& paths) {
            folders.add(place, segment, paths);
            addCode(paths, statistics, characters);
        });
        if (segment->entry().form == SegmentForm::kPacked) {
            ++statistics.packedCount;
            statistics.bytes.packed += segment->entry().size;
        } else {
            addImage(segment.part().file().bytesOf(segment->entry()), statistics.bytes);
        }
    });
    statistics.characterCount = characters.size();
    fill(statistics, folders, folderLimit);
    return statistics;
}

}  // namespace zqpaths
