#include "compressedpaths/store/PathArena.hpp"

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "compressedpaths/store/Hashing.hpp"

namespace compressedpaths {

using namespace arena;

PathArena::PathArena() : seed_(processSeed()) {
    arrays_.folders.push({kRoot, kNone, kNone, kNone});
}

PathArena::PathArena(Arrays arrays, std::uint64_t seed) noexcept
    : arrays_(std::move(arrays)), seed_(seed), loadedFolders_(folderCount()) {}

void PathArena::limitTo(std::size_t nameBytes, std::size_t folders) noexcept {
    maxNameBytes_ = nameBytes;
    maxFolders_ = folders;
}

void PathArena::refuse() {
    throw InvalidImageException();
}

// --- Reading.

std::uint32_t PathArena::childCount(Id id) const {
    const Link last = folder(id).last;
    if (last == kNone) return 0;
    if ((last & kFolderLink) != 0) return positionOf(last & ~kFolderLink) + 1;
    const Run run = runAt(last);
    return run.first + run.count;
}

std::uint32_t PathArena::positionOf(Id id) const {
    const std::uint32_t offset = folder(id).name;
    if (offset >= arrays_.names.size()) refuse();
    const std::uint8_t first = arrays_.names[offset];
    if (first < 0x80) return first;
    std::uint64_t position = 0;
    if (readVarint(arrays_.names.data() + offset, arrays_.names.end(), position) == nullptr ||
        position >= kFolderLink)
        refuse();
    return static_cast<std::uint32_t>(position);
}

std::uint32_t PathArena::storedNameOffset(Id id) const {
    const std::uint32_t offset = folder(id).name;
    if (offset >= arrays_.names.size()) refuse();
    std::uint64_t position = 0;
    const std::uint8_t* const name =
        readVarint(arrays_.names.data() + offset, arrays_.names.end(), position);
    if (name == nullptr) refuse();
    return static_cast<std::uint32_t>(name - arrays_.names.data());
}

NameView PathArena::nameOf(Id id) const {
    return nameAt(storedNameOffset(id));
}

NameView PathArena::nameAfter(Id id, std::uint32_t& after) const {
    const std::uint32_t offset = storedNameOffset(id);
    if (offset < after) refuse();
    const NameView name = nameAt(offset);
    after = static_cast<std::uint32_t>(name.end() - arrays_.names.data());
    return name;
}

void PathArena::requireOwnNames() const {
    std::uint32_t after = 0;
    for (Id id = 1; id < folderCount(); ++id) static_cast<void>(nameAfter(id, after));
}

std::uint32_t PathArena::nameOffset(const Run& run, std::uint32_t index) const {
    auto [offset, left] = nearName(run, index);
    for (; left > 0; --left) offset = nameAfter(offset);
    return offset;
}

NameView PathArena::nameOf(const Place& place) const {
    if ((place.link & kFolderLink) != 0) return nameOf(place.link & ~kFolderLink);
    const Run run = runAt(place.link);
    if (place.index >= run.count) refuse();
    return nameAt(nameOffset(run, place.index));
}

PathArena::Id PathArena::folderOf(const Place& place) const {
    if ((place.link & kFolderLink) != 0) return parentOf(place.link & ~kFolderLink);
    return runAt(place.link).folder;
}

std::uint32_t PathArena::positionOf(const Place& place) const {
    if ((place.link & kFolderLink) != 0) return positionOf(place.link & ~kFolderLink);
    return runAt(place.link).first + place.index;
}

PathArena::Link PathArena::nextOf(Link link) const {
    if ((link & kFolderLink) != 0) return folder(link & ~kFolderLink).next;
    const std::size_t size = arrays_.names.size();
    if (link >= size || size - link < kLinkSize) refuse();
    return load<Link>(arrays_.names.data() + link);
}

/// The item after one that is not the last.
PathArena::Link PathArena::itemAfter(Link link) const {
    const Link next = nextOf(link);
    if (placeOf(next) <= placeOf(link)) refuse();
    return next;
}

/// Where an item stands in the names. It ascends along the items of a folder, so that going through
/// them ends, whatever an image holds.
std::uint32_t PathArena::placeOf(Link link) const {
    return (link & kFolderLink) != 0 ? folder(link & ~kFolderLink).name : link;
}

PathArena::Cursor PathArena::cursorAt(Id id, std::uint32_t position, Link link) const {
    // Each folder is met in one place, and the root, which is its own parent, in none: so going
    // through all of them ends.
    Cursor cursor{id, position, link};
    if (cursor.isFile()) {
        cursor.run = runAt(link);
        cursor.name = cursor.run.names;
        if (cursor.run.folder != id) refuse();
    } else if (cursor.link == (kFolderLink | kRoot) || parentOf(link & ~kFolderLink) != id) {
        refuse();
    }
    return cursor;
}

PathArena::Cursor PathArena::firstChild(Id id) const {
    const Link last = folder(id).last;
    if (last == kNone) refuse();
    return cursorAt(id, 0, nextOf(last));
}

/// Goes on to the item after that of the cursor.
void PathArena::advanceToNextItem(Cursor& cursor) const {
    const std::uint32_t end = cursor.isFile() ? nameAfter(cursor.name) : placeOf(cursor.link) + 1;
    const Link next = nextOf(cursor.link);
    if (placeOf(next) < end) refuse();
    cursor = cursorAt(cursor.folder, cursor.position + 1, next);
}

PathArena::Id PathArena::folderAt(const Place& place) const {
    if ((place.link & kFolderLink) != 0) return place.link & ~kFolderLink;
    const Run run = runAt(place.link);
    return hasFormerFiles(run) ? formerFileAt(run.folder, run.first + place.index) : kNone;
}

PathArena::Id PathArena::formerFileAt(Id parent, std::uint32_t position) const {
    const auto isIt = [&](Id id) {
        return parentOf(id) == parent && positionOf(id) == position && folder(id).next == kNone;
    };
    const std::uint64_t hash = hashOf(parent, position, seed_);
    if (!arrays_.formerFiles.slots().isBorrowed()) return arrays_.formerFiles.find(hash, isIt);
    if (!isCrowded_.load(std::memory_order_relaxed)) {
        const auto found = arrays_.formerFiles.findWithin(kMostSteps, hash, isIt);
        if (found) return *found;
        isCrowded_.store(true, std::memory_order_relaxed);
    }
    const IdTable& own = ownFormerFiles_.get([this] { return tableOfFormerFiles(); });
    return own.find(hashOf(parent, position, processSeed()), isIt);
}

/// The table of former files with a seed of our own: who knew that of the image could choose keys
/// which collide.
IdTable PathArena::tableOfFormerFiles() const {
    const auto hash = [this](Id id) { return hashOf(parentOf(id), positionOf(id), processSeed()); };
    const auto place = [this](Id id) { return std::pair(parentOf(id), positionOf(id)); };
    std::vector<Id> ids;
    for (const Id id : arrays_.formerFiles.slots().values())
        if (id != IdTable::kNone && folder(id).next == kNone) ids.push_back(id);
    // Each place once: those of an image may say it again and again.
    std::ranges::sort(ids, {}, place);
    const auto isSamePlace = [&](Id a, Id b) { return place(a) == place(b); };
    ids.erase(std::unique(ids.begin(), ids.end(), isSamePlace), ids.end());
    IdTable table;
    for (const Id id : ids) {
        table.reserveForOne(id, hash);
        table.insert(hash(id), id);
    }
    return table;
}

std::optional<PathArena::Place> PathArena::childAt(Id id, std::uint64_t position, Link from) const {
    if (position >= childCount(id)) return std::nullopt;
    const Link last = folder(id).last;
    Link link = from == kNone ? nextOf(last) : from;
    while (true) {
        if ((link & kFolderLink) != 0) {
            if (positionOf(link & ~kFolderLink) == position) return Place{link, 0};
        } else {
            const Run run = runAt(link);
            if (position >= run.first && position - run.first < run.count)
                return Place{link, static_cast<std::uint32_t>(position - run.first)};
        }
        if (link == last) refuse();
        link = itemAfter(link);
    }
}

void PathArena::chainTo(Id id, std::vector<Id>& chain) const {
    chain.clear();
    for (; id != kRoot; id = parentOf(id)) chain.push_back(id);
    std::reverse(chain.begin(), chain.end());
}

void PathArena::appendKeysTo(Id folder, std::vector<std::vector<std::uint8_t>>& keys) const {
    std::vector<Id> chain;
    chainTo(folder, chain);
    keys.reserve(keys.size() + chain.size() + 1);
    for (const Id id : chain) keys.push_back(keyOf(nameOf(id)));
}

void PathArena::appendKeysOf(const Place& child,
                             std::vector<std::vector<std::uint8_t>>& keys) const {
    appendKeysTo(folderOf(child), keys);
    keys.push_back(keyOf(nameOf(child)));
}

// --- The order of all folders by parent and name.

std::span<const std::uint8_t> PathArena::storedNameAt(std::uint32_t offset) const {
    const std::uint8_t* const begin = arrays_.names.data() + offset;
    return {begin, nameAt(offset).end()};
}

/// Orders the stored name of a folder against another, or against what one begins with: below, at
/// or above zero. Stored names begin with their length, so no one begins with all of another.
int PathArena::compareNames(Id a, std::span<const std::uint8_t> storedName) const {
    const std::span<const std::uint8_t> name = storedNameAt(storedNameOffset(a));
    const std::size_t common = std::min(name.size(), storedName.size());
    const int order = std::memcmp(name.data(), storedName.data(), common);
    return order != 0 ? order : static_cast<int>(name.size() > storedName.size());
}

/// Orders two folders of one parent by name; the first child first among equal names.
bool PathArena::isBefore(Id a, Id b) const {
    const int names = compareNames(a, storedNameAt(storedNameOffset(b)));
    return names != 0 ? names < 0 : positionOf(a) < positionOf(b);
}

bool PathArena::isOrderedByName() const {
    const std::span<const Id> order = foldersByName().values();
    for (std::size_t i = 1; i < order.size(); ++i) {
        const Id before = parentOf(order[i - 1]);
        const Id parent = parentOf(order[i]);
        if (before > parent || (before == parent && !isBefore(order[i - 1], order[i])))
            return false;
    }
    return true;
}

FlatArray<PathArena::Id> PathArena::orderFolders() const {
    FlatArray<Id> order;
    if (folderCount() == 1) return order;
    // Folders first come together by parent, in time that is linear; then each few are sorted.
    std::vector<std::uint32_t> ends(folderCount() + 1, 0);
    for (Id id = 1; id < folderCount(); ++id) ++ends[parentOf(id) + 1];
    std::partial_sum(ends.begin(), ends.end(), ends.begin());
    order.assign(folderCount() - 1, 0);
    for (Id id = 1; id < folderCount(); ++id) order.at(ends[parentOf(id)]++) = id;

    Id* begin = &order.at(0);
    for (Id parent = 0; parent < folderCount(); ++parent) {
        Id* const end = &order.at(0) + ends[parent];
        std::sort(begin, end, [this](Id a, Id b) { return isBefore(a, b); });
        begin = end;
    }
    return order;
}

const FlatArray<PathArena::Id>& PathArena::foldersByName() const {
    return foldersByName_.get([this] { return orderFolders(); });
}

PathArena::Id PathArena::findFolder(Id parent, std::span<const std::uint8_t> storedName) const {
    const std::span<const Id> order = foldersByName().values();
    const auto found =
        std::lower_bound(order.begin(), order.end(), storedName, [&](Id id, const auto& name) {
            const Id itsParent = parentOf(id);
            return itsParent != parent ? itsParent < parent : compareNames(id, name) < 0;
        });
    if (found == order.end() || parentOf(*found) != parent || compareNames(*found, storedName) != 0)
        return kNone;
    return *found;
}

std::span<const PathArena::Id> PathArena::foldersByNameIn(Id parent) const {
    const std::span<const Id> order = foldersByName().values();
    const auto begin = std::lower_bound(order.begin(), order.end(), parent,
                                        [this](Id id, Id wanted) { return parentOf(id) < wanted; });
    const auto end = std::upper_bound(begin, order.end(), parent,
                                      [this](Id wanted, Id id) { return wanted < parentOf(id); });
    return {begin, end};
}

std::span<const PathArena::Id> PathArena::fromName(std::span<const Id> byName,
                                                   std::span<const std::uint8_t> storedName) const {
    return {
        std::lower_bound(byName.begin(), byName.end(), storedName,
                         [this](Id id, const auto& name) { return compareNames(id, name) < 0; }),
        byName.end()};
}

std::vector<PathArena::Id> PathArena::foldersIn(Id parent) const {
    const std::span<const Id> byName = foldersByNameIn(parent);
    std::vector<Id> ids(byName.begin(), byName.end());
    std::sort(ids.begin(), ids.end());
    // An order from outside may have folders twice, or in others.
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    std::erase_if(ids, [&](Id id) { return parentOf(id) != parent; });
    return ids;
}

}  // namespace compressedpaths
