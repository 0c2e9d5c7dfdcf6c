#include "zqpaths/set/OpenedSet.hpp"

#include <algorithm>
#include <utility>
#include <vector>

namespace zqpaths {
namespace {

/// Bytes of a path, if it is like the others of its segment, and a few more.
std::uint64_t likelySize(const SegmentEntry& entry) {
    constexpr std::uint64_t kMost = 256;  // whatever a directory says
    const std::uint64_t average = entry.textSize / entry.pathCount;
    return std::min(average + average / 8, kMost);
}

/// Whether numbers that ascend begin with so many neighbours that they are decoded as a range.
bool beginsWithRange(std::span<const std::uint64_t> numbers) {
    constexpr std::size_t kFew = 8;
    return numbers.size() >= kFew && numbers[kFew - 1] - numbers[0] == kFew - 1;
}

std::size_t sizeOfRange(std::span<const std::uint64_t> numbers) {
    std::size_t size = 1;
    while (size < numbers.size() && numbers[size] == numbers[size - 1] + 1) ++size;
    return size;
}

}  // namespace

std::shared_ptr<const OpenedSet> OpenedSet::open(const std::string& file) {
    return std::make_shared<const OpenedSet>(SetFile::open(file));
}

OpenedSet::OpenedSet(std::shared_ptr<const SetFile> file) : file_(std::move(file)) {
    std::uint64_t next = 1;
    for (const SegmentEntry& entry : file_->segments()) {
        segments_.emplace_back(file_, entry, next);
        next += entry.pathCount;
    }
    const std::optional<BlockEntry>& block = file_->state().directory.gone;
    gone_ = GonePaths(file_->bytesOf(block), block ? block->count : 0, size());
}

void OpenedSet::requireNumber(std::uint64_t number) const {
    if (number >= 1 && number <= size()) return;
    throw Error(ErrorKind::kWrongUse, file_->path(),
                "there is no path number " + std::to_string(number) + ", the set has " +
                    std::to_string(size()));
}

const Segment& OpenedSet::segmentOf(std::uint64_t number) const noexcept {
    return *std::partition_point(
        segments_.begin(), segments_.end(),
        [number](const Segment& segment) { return segment.lastNumber() < number; });
}

void OpenedSet::appendPath(std::uint64_t number, std::string& text) const {
    const Segment& segment = segmentOf(number);
    segment.appendPath(segment.positionOf(number), text);
}

void OpenedSet::appendPaths(PathNumbers numbers, PathBuffer& paths) const {
    while (numbers.first <= numbers.last) {
        const Segment& segment = segmentOf(numbers.first);
        const std::uint64_t last = std::min(numbers.last, segment.lastNumber());
        const std::uint64_t count = last - numbers.first + 1;
        paths.reserve(paths.size() + count, paths.textSize() + count * likelySize(segment.entry()));
        segment.forEachPath({segment.positionOf(numbers.first), segment.positionOf(last)},
                            [&](std::size_t position, std::string_view path) {
                                paths.append(segment.numberOf(position), path);
                            });
        numbers.first = last + 1;
    }
}

void OpenedSet::appendPaths(std::span<const std::uint64_t> numbers, PathBuffer& paths) const {
    paths.reserve(paths.size() + numbers.size(), 0);
    while (!numbers.empty()) {
        std::size_t size = 0;
        if (beginsWithRange(numbers)) {
            size = sizeOfRange(numbers);
            appendPaths(PathNumbers{numbers.front(), numbers[size - 1]}, paths);
        } else {
            do ++size;
            while (size < numbers.size() && !beginsWithRange(numbers.subspan(size)));
            appendScattered(numbers.first(size), paths);
        }
        numbers = numbers.subspan(size);
    }
}

void OpenedSet::appendScattered(std::span<const std::uint64_t> numbers, PathBuffer& paths) const {
    std::vector<std::size_t> positions;
    for (auto next = numbers.begin(); next != numbers.end();) {
        const Segment& segment = segmentOf(*next);
        positions.clear();
        for (; next != numbers.end() && *next <= segment.lastNumber(); ++next)
            positions.push_back(segment.positionOf(*next));
        paths.reserve(0, paths.textSize() + positions.size() * likelySize(segment.entry()));
        segment.forEachPath(std::span<const std::size_t>(positions),
                            [&](std::size_t position, std::string_view path) {
                                paths.append(segment.numberOf(position), path);
                            });
    }
}

}  // namespace zqpaths
