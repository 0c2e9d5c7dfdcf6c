#include "compressedpaths/store/FolderEntries.hpp"

#include <algorithm>
#include <array>
#include <cassert>

#include "compressedpaths/BPathTreeExceptions.hpp"

namespace compressedpaths {
namespace {

// An entry is a varint of its path count with three flags below it, then what the flags say. The
// number of a run is its distance from the run before it in the block, the sign in the lowest bit.
constexpr std::uint64_t kExisted = 1;
constexpr std::uint64_t kHasRun = 2;   // else folder and position of the first file follow
constexpr std::uint64_t kHasSkip = 4;  // of the run; follows its distance
constexpr unsigned kPathCountShift = 3;
constexpr std::size_t kMaxEntrySize = 3 * kMaxVarintSize;

std::uint64_t zigzag(PathArena::Link from, PathArena::Link to) noexcept {
    return to >= from ? std::uint64_t{to - from} << 1 : (std::uint64_t{from - to} << 1 | 1);
}

}  // namespace

void FolderEntries::reserveForOne() {
    bytes_.reserveFor(kMaxEntrySize);
    blocks_.reserveFor(1);
    unpairedCounts_.reserve(unpairedCounts_.empty() ? 0 : unpairedCounts_.size() + 1);
    unpairedPlaces_.reserve(unpairedPlaces_.empty() ? 0 : unpairedPlaces_.size() + 1);
}

void FolderEntries::append(const Entry& entry) noexcept {
    if (!unpairedPlaces_.empty()) {
        const Place place = unpairedPlaces_.front();
        unpairedPlaces_.erase(unpairedPlaces_.begin());
        unpairedPlaces_.push_back(entry.place);
        return write({entry.pathCount, place});
    }
    if (!unpairedCounts_.empty()) {
        const std::uint64_t count = unpairedCounts_.front();
        unpairedCounts_.erase(unpairedCounts_.begin());
        unpairedCounts_.push_back(entry.pathCount);
        return write({count, entry.place});
    }
    write(entry);
}

void FolderEntries::write(const Entry& entry) noexcept {
    if (size_ % kBlockSize == 0) {
        blocks_.append({pathCount_, bytes_.size()});
        lastRun_ = 0;
    }
    const Place& place = entry.place;
    const bool hasRun = place.run != PathArena::kNone;
    std::array<std::uint8_t, kMaxEntrySize> out;
    std::uint8_t* end =
        writeVarint(entry.pathCount << kPathCountShift | (hasRun && place.skip > 0 ? kHasSkip : 0) |
                        (hasRun ? kHasRun : 0) | (place.existed ? kExisted : 0),
                    out.data());
    if (hasRun) {
        end = writeVarint(zigzag(lastRun_, place.run), end);
        if (place.skip > 0) end = writeVarint(place.skip, end);
        lastRun_ = place.run;
    } else {
        end = writeVarint(place.folder, end);
        end = writeVarint(place.firstChild, end);
    }
    bytes_.append(out.data(), static_cast<std::size_t>(end - out.data()));
    ++size_;
    pathCount_ += entry.pathCount;
}

void FolderEntries::reserveUnpaired(std::size_t counts, std::size_t places) {
    unpairedCounts_.reserve(counts);
    unpairedPlaces_.reserve(places);
}

void FolderEntries::appendCount(std::uint64_t pathCount) {
    assert(unpairedPlaces_.empty());
    unpairedCounts_.push_back(pathCount);
}

void FolderEntries::appendPlace(const Place& place) {
    assert(unpairedCounts_.empty());
    unpairedPlaces_.push_back(place);
}

FolderEntries::Mark FolderEntries::mark() const {
    return {bytes_.size(), blocks_.size(),  size_,          pathCount_,
            lastRun_,      unpairedCounts_, unpairedPlaces_};
}

void FolderEntries::rollBack(Mark& mark) noexcept {
    bytes_.truncate(mark.byteSize);
    blocks_.truncate(mark.blockCount);
    size_ = mark.size;
    pathCount_ = mark.pathCount;
    lastRun_ = mark.lastRun;
    unpairedCounts_.swap(mark.unpairedCounts);
    unpairedPlaces_.swap(mark.unpairedPlaces);
}

FolderEntries::Cursor FolderEntries::startOf(std::size_t block) const {
    if (block >= blocks_.size()) throw InvalidImageException();
    Cursor cursor;
    cursor.number = block * kBlockSize;
    cursor.pathsBefore = blocks_[block].pathsBefore;
    cursor.offset = blocks_[block].offset;
    read(cursor);
    return cursor;
}

/// Reads the entry at the cursor's offset and moves the offset past it.
void FolderEntries::read(Cursor& cursor) const {
    if (cursor.offset >= bytes_.size()) throw InvalidImageException();
    const std::uint8_t* in = bytes_.data() + cursor.offset;
    const auto readNumber = [&](std::uint64_t largest) -> std::uint64_t {
        if (in != bytes_.end() && *in < 0x80) return *in++;
        std::uint64_t number = 0;
        in = readVarint(in, bytes_.end(), number);
        if (in == nullptr || number > largest) throw InvalidImageException();
        return number;
    };
    const std::uint64_t head = readNumber(~std::uint64_t{0});
    cursor.entry = {head >> kPathCountShift, {}};
    Place& place = cursor.entry.place;
    place.existed = (head & kExisted) != 0;
    if ((head & kHasRun) != 0) {
        const std::uint64_t distance = readNumber(std::uint64_t{PathArena::kNone} << 1 | 1);
        const auto steps = static_cast<PathArena::Link>(distance >> 1);
        place.run = (distance & 1) != 0 ? cursor.lastRun - steps : cursor.lastRun + steps;
        if ((head & kHasSkip) != 0)
            place.skip = static_cast<std::uint32_t>(readNumber(PathArena::kNone));
        cursor.lastRun = place.run;
    } else {
        place.folder = static_cast<PathArena::Id>(readNumber(PathArena::kNone));
        place.firstChild = readNumber(~std::uint64_t{0});
    }
    cursor.offset = static_cast<std::uint64_t>(in - bytes_.data());
}

FolderEntries::Cursor FolderEntries::at(std::size_t number) const {
    Cursor cursor = startOf(number / kBlockSize);
    while (cursor.number < number) advance(cursor);
    return cursor;
}

std::optional<FolderEntries::Cursor> FolderEntries::holding(std::uint64_t pathNumber) const {
    if (pathNumber == 0 || pathNumber > pathCount_) return std::nullopt;
    return holdingIn(blockOf(pathNumber), pathNumber);
}

std::size_t FolderEntries::blockOf(std::uint64_t pathNumber) const noexcept {
    // The last block that begins before the number. No branch depends on what is compared: half of
    // them would be guessed wrong.
    const Block* block = blocks_.data();
    for (std::size_t left = blocks_.size(); left > 1;) {
        const std::size_t half = left / 2;
        block += block[half].pathsBefore < pathNumber ? half : 0;
        left -= half;
    }
    if (!blocks_.isEmpty() && block->offset < bytes_.size())
        __builtin_prefetch(bytes_.data() + block->offset);
    return static_cast<std::size_t>(block - blocks_.data());
}

FolderEntries::Cursor FolderEntries::holdingIn(std::size_t block, std::uint64_t pathNumber) const {
    Cursor cursor = startOf(block);
    if (cursor.pathsBefore >= pathNumber) throw InvalidImageException();  // the first one can lie
    while (cursor.pathsUpTo() < pathNumber) {
        if (cursor.number + 1 == size_) throw InvalidImageException();
        advance(cursor);
    }
    return cursor;
}

void FolderEntries::advance(Cursor& cursor) const {
    const std::size_t next = cursor.number + 1;
    const std::uint64_t pathsBefore = cursor.pathsUpTo();
    if (next % kBlockSize == 0) {
        cursor = startOf(next / kBlockSize);
        cursor.pathsBefore = pathsBefore;
        return;
    }
    cursor.number = next;
    cursor.pathsBefore = pathsBefore;
    read(cursor);
}

}  // namespace compressedpaths
