#include "zqpaths/set/OpenedSet.hpp"

#include <fcntl.h>

#include <algorithm>
#include <array>
#include <utility>

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

/// The text of a file.
std::string textOf(const SystemFile& file) {
    std::string text(file.size(), '\0');
    text.resize(file.readAt(0, std::as_writable_bytes(std::span(text))));
    return text;
}

/// A whole set file as a row.
ManifestRow rowOf(const SetFile& file) {
    return {0, 0, file.segments().size(), file.pathCount(), gonePathsOf(file).count()};
}

}  // namespace

// --- Opening.

std::shared_ptr<const OpenedSet> OpenedSet::open(const std::string& file) {
    return openAny(file);
}

std::shared_ptr<const OpenedSet> OpenedSet::openPartial(const std::string& file) {
    const std::shared_ptr<OpenedSet> opened = openAny(file);
    if (opened->opened_) opened->findMissing();
    return opened;
}

/// Most sets are set files; only one that is none is looked at as a manifest.
std::shared_ptr<OpenedSet> OpenedSet::openAny(const std::string& file) {
    try {
        return std::shared_ptr<OpenedSet>(new OpenedSet(SetFile::open(file)));
    } catch (const Error& error) {
        if (error.kind() != ErrorKind::kNotASet) throw;
        SystemFile other = SystemFile::open(file, O_RDONLY | O_NONBLOCK, file);
        requireRegularFile(other);
        std::array<std::byte, kTellingFront> front{};
        const std::size_t size = other.readAt(0, front);
        if (!beginsLikeManifest({reinterpret_cast<const char*>(front.data()), size})) throw;
        try {
            return std::shared_ptr<OpenedSet>(new OpenedSet(file, decodeManifest(textOf(other))));
        } catch (const Error& refusal) {
            throw Error(refusal.kind(), file, refusal.what());
        }
    }
}

OpenedSet::OpenedSet(std::shared_ptr<const SetFile> file)
    : name_(file->path()),
      fingerprint_(file->state().superblock.directorySum),
      parts_(std::vector{rowOf(*file)}),
      onlyFile_(std::move(file)) {
    only_.emplace(onlyFile_, parts_[0]);
}

OpenedSet::OpenedSet(std::string name, SetManifest manifest)
    : name_(std::move(name)), fingerprint_(fingerprintOf(manifest)), parts_(manifest.rows) {
    opened_.emplace(name_, std::move(manifest.files), parts_);
}

void OpenedSet::findMissing() {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < parts_.count(); ++i) {
        try {
            static_cast<void>(opened_->pin(i));
        } catch (const Error& error) {
            places.push_back(i);
            missing_.push_back(
                {parts_[i].firstNumber, parts_[i].lastNumber(), error, parts_[i].row.file});
        }
    }
    parts_.markMissing(places);
}

// --- Segments.

void OpenedSet::requireSegments(std::uint64_t first, std::uint64_t count) const {
    if (first <= segmentCount() && count <= segmentCount() - first) return;
    throw Error(ErrorKind::kWrongUse, name_,
                "there are no " + std::to_string(count) + " segments after " +
                    std::to_string(first) + ", the set has " + std::to_string(segmentCount()));
}

PinnedSegment OpenedSet::segment(std::uint64_t place) const {
    const std::size_t i = parts_.ofSegment(place);
    const PinnedPart pinned = part(i);
    return {pinned, pinned->segments()[place - parts_[i].segmentsBefore]};
}

PinnedSegment OpenedSet::segmentOf(std::uint64_t number) const {
    const PinnedPart pinned = part(parts_.ofNumber(number));
    return {pinned, pinned->segmentOf(number)};
}

std::vector<ManifestRow> OpenedSet::manifestRows(std::uint64_t firstSegment,
                                                 std::uint64_t count) const {
    std::vector<ManifestRow> rows;
    const std::uint64_t end = firstSegment + count;
    while (firstSegment < end) {
        const SetPart& own = parts_[parts_.ofSegment(firstSegment)];
        const std::uint64_t skipped = firstSegment - own.segmentsBefore;
        ManifestRow row = own.row;
        row.segmentCount = std::min(end, own.segmentsBefore + row.segmentCount) - firstSegment;
        firstSegment += row.segmentCount;
        if (row.segmentCount < own.row.segmentCount) {
            const PinnedPart pinned = part(parts_.ofSegment(own.segmentsBefore));
            const Segment& first = pinned->segments()[skipped];
            const Segment& last = pinned->segments()[skipped + row.segmentCount - 1];
            row.firstSegment += skipped;
            row.pathCount = last.lastNumber() - first.firstNumber() + 1;
            row.goneCount =
                pinned->goneBelow(last.lastNumber() + 1) - pinned->goneBelow(first.firstNumber());
        }
        rows.push_back(row);
    }
    return rows;
}

// --- Numbers.

void OpenedSet::requireNumber(std::uint64_t number) const {
    if (number >= 1 && number <= size()) return;
    throw Error(ErrorKind::kWrongUse, name_,
                "there is no path number " + std::to_string(number) + ", the set has " +
                    std::to_string(size()));
}

void OpenedSet::requirePresent(std::uint64_t number) const {
    requireNumber(number);
    const auto missing = firstMissingUpFrom(number);
    if (missing != missing_.end() && missing->firstNumber <= number) throw Error(missing->reason);
}

std::vector<PathSet::Missing>::const_iterator OpenedSet::firstMissingUpFrom(
    std::uint64_t number) const noexcept {
    return std::ranges::partition_point(
        missing_, [number](const auto& missing) { return missing.lastNumber < number; });
}

std::optional<PathNumbers> OpenedSet::nextThere(std::uint64_t number) const noexcept {
    auto missing = firstMissingUpFrom(number);
    for (; missing != missing_.end() && missing->firstNumber <= number; ++missing)
        number = missing->lastNumber + 1;
    if (number > size()) return std::nullopt;
    return PathNumbers{number, missing != missing_.end() ? missing->firstNumber - 1 : size()};
}

void OpenedSet::appendPath(std::uint64_t number, std::string& text) const {
    const PinnedSegment segment = segmentOf(number);
    segment->appendPath(segment->positionOf(number), text);
}

std::uint64_t OpenedSet::appendPaths(PathNumbers numbers, PathBuffer& paths) const {
    for (auto there = nextThere(numbers.first); there && there->first <= numbers.last;
         there = nextThere(numbers.first)) {
        numbers.first = there->first;
        const PinnedSegment segment = segmentOf(numbers.first);
        const std::uint64_t last = std::min(numbers.last, segment->lastNumber());
        const std::uint64_t count = last - numbers.first + 1;
        paths.reserve(paths.size() + count,
                      paths.textSize() + count * likelySize(segment->entry()));
        const std::size_t next =
            segment->forEachPath({segment->positionOf(numbers.first), segment->positionOf(last)},
                                 [&](std::size_t position, std::string_view path) {
                                     paths.append(segment->numberOf(position), path);
                                     return !paths.isFull();
                                 });
        numbers.first = segment->numberOf(next);
        if (paths.isFull()) return numbers.first;
    }
    return numbers.last + 1;
}

bool OpenedSet::appendPaths(std::span<const std::uint64_t> numbers, PathBuffer& paths) const {
    paths.reserve(paths.size() + numbers.size(), 0);
    while (!numbers.empty()) {
        std::size_t size = 0;
        if (beginsWithRange(numbers)) {
            size = sizeOfRange(numbers);
            if (appendPaths(PathNumbers{numbers.front(), numbers[size - 1]}, paths) !=
                numbers[size - 1] + 1)
                return false;
        } else {
            do ++size;
            while (size < numbers.size() && !beginsWithRange(numbers.subspan(size)));
            if (!appendScattered(numbers.first(size), paths)) return false;
        }
        numbers = numbers.subspan(size);
    }
    return true;
}

bool OpenedSet::appendScattered(std::span<const std::uint64_t> numbers, PathBuffer& paths) const {
    std::vector<std::size_t> positions;
    for (auto next = numbers.begin(); next != numbers.end();) {
        const PinnedSegment segment = segmentOf(*next);
        positions.clear();
        for (; next != numbers.end() && *next <= segment->lastNumber(); ++next)
            positions.push_back(segment->positionOf(*next));
        paths.reserve(0, paths.textSize() + positions.size() * likelySize(segment->entry()));
        const std::size_t count =
            segment->forEachPath(std::span<const std::size_t>(positions),
                                 [&](std::size_t position, std::string_view path) {
                                     paths.append(segment->numberOf(position), path);
                                     return !paths.isFull();
                                 });
        if (count < positions.size()) return false;
    }
    return true;
}

// --- Paths that are gone.

bool OpenedSet::isGone(std::uint64_t number) const {
    const std::size_t i = parts_.ofNumber(number);
    if (parts_[i].goneCount() == 0) return false;
    return part(i)->isGone(number);
}

std::uint64_t OpenedSet::goneBelow(std::uint64_t number) const {
    if (number > size()) return parts_.goneCount();
    const std::size_t i = parts_.ofNumber(number);
    if (parts_[i].goneCount() == 0) return parts_[i].goneBefore;
    return parts_[i].goneBefore + part(i)->goneBelow(number);
}

std::uint64_t OpenedSet::goneNumber(std::uint64_t place) const {
    const std::size_t i = parts_.ofGone(place);
    return part(i)->goneNumber(place - parts_[i].goneBefore);
}

std::uint64_t OpenedSet::presentNumber(std::uint64_t place) const {
    const std::size_t i = parts_.ofPresent(place);
    const std::uint64_t inPart = place - parts_[i].presentBefore;
    if (parts_[i].goneCount() == 0) return parts_[i].firstNumber + inPart;
    return part(i)->presentNumber(inPart);
}

}  // namespace zqpaths
