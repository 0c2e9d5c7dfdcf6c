// Adding to a trie: finding a child by its name, writing runs and folders, and the transaction that
// undoes what is not kept.

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <utility>

#include "compressedpaths/BPathTreeExceptions.hpp"
#include "compressedpaths/store/Hashing.hpp"
#include "compressedpaths/store/PathArena.hpp"

namespace compressedpaths {
namespace {

using namespace arena;

// A run is a link to the next item, three varints, samples and names. The last varint is the count
// with two flags below it.
constexpr std::size_t kMaxRunHead = kLinkSize + std::size_t{3} * 5;

constexpr std::uint32_t sampleCount(std::uint32_t fileCount) noexcept {
    return fileCount <= kMaxPlainRun ? 0 : (fileCount - 1) / kSampleDistance;
}

template <class T>
void store(std::uint8_t* to, T value) noexcept {
    std::memcpy(to, &value, sizeof value);
}

}  // namespace

// --- Finding by hash, for adding.

std::uint64_t PathArena::hashOfName(Id parent,
                                    std::span<const std::uint8_t> storedName) const noexcept {
    return hashOf(storedName.data(), storedName.size(),
                  seed_ ^ (std::uint64_t{parent} * 0x9E3779B97F4A7C15));
}

std::uint64_t PathArena::hashOfFolder(Id id) const {
    return hashOfName(parentOf(id), storedNameAt(storedNameOffset(id)));
}

std::uint64_t PathArena::hashOfFormerFile(Id id) const {
    return hashOf(parentOf(id), positionOf(id), seed_);
}

/// True if the name that stands at `offset` is this one. Stored forms tell where they end, so that
/// equal bytes are equal names.
bool PathArena::hasName(std::uint32_t offset,
                        std::span<const std::uint8_t> storedName) const noexcept {
    return offset < arrays_.names.size() && arrays_.names.size() - offset >= storedName.size() &&
           std::memcmp(arrays_.names.data() + offset, storedName.data(), storedName.size()) == 0;
}

void PathArena::prepareForAdding() {
    arrays_.names.own();
    arrays_.folders.own();
    if (hasFolderTable_) return;

    // Both tables are made anew, since one from an image may hold anything.
    IdTable formerFiles;
    const auto formerHash = [this](Id id) { return hashOfFormerFile(id); };
    for (const Id id : arrays_.formerFiles.slots().values()) {
        if (id == IdTable::kNone) continue;
        formerFiles.reserveForOne(id, formerHash);
        formerFiles.insert(formerHash(id), id);
    }
    IdTable table(IdTable::Tags::kInSlots);
    std::vector<bool> isTwinChecked(loadedFolders_, false);
    const auto hash = [this](Id id) { return hashOfFolder(id); };
    for (Id id = 1; id < folderCount(); ++id) {
        const std::span<const std::uint8_t> name = storedNameAt(storedNameOffset(id));
        const Id parent = parentOf(id);
        const Id first = table.find(hash(id), [&](Id other) {
            return arrays_.folders[other].parent == parent &&
                   hasName(storedNameOffset(other), name);
        });
        if (first != IdTable::kNone) continue;  // of equal names, the first child is found
        table.reserveForOne(id, hash);
        table.insert(hash(id), id);
    }
    arrays_.formerFiles = std::move(formerFiles);
    folders_ = std::move(table);
    isTwinChecked_ = std::move(isTwinChecked);
    hasFolderTable_ = true;
}

/// The first file of a folder with this stored name, a former file too, or no place.
PathArena::Place PathArena::findFile(Id parent, std::span<const std::uint8_t> storedName) {
    const std::uint32_t count = childCount(parent);
    if (count >= kWideFolder) return findFileByTable(parent, storedName);
    if (count == 0) return {kNone, 0};

    const Link last = arrays_.folders[parent].last;
    for (Link link = nextOf(last);; link = itemAfter(link)) {
        if ((link & kFolderLink) == 0) {
            const Run run = runAt(link);
            if (run.folder != parent) refuse();
            std::uint32_t name = run.names;
            for (std::uint32_t index = 0; index < run.count; ++index, name = nameAfter(name))
                if (hasName(name, storedName)) return {link, index};
        }
        if (link == last) return {kNone, 0};
    }
}

PathArena::Place PathArena::findFileByTable(Id parent, std::span<const std::uint8_t> storedName) {
    WideFolder& wide = wideFolders_[parent];
    takeInChildren(parent, wide);
    const std::uint32_t name =
        wide.names.find(hashOf(storedName.data(), storedName.size(), seed_),
                        [&](std::uint32_t offset) { return hasName(offset, storedName); });
    if (name == IdTable::kNone) return {kNone, 0};

    const std::span<const Link> runs = wide.runs.values();
    const Run run = runAt(*(std::upper_bound(runs.begin(), runs.end(), name) - 1));
    std::uint32_t low = 0;  // the last sampled name that stands at or before the one found
    std::uint32_t high = run.count <= kMaxPlainRun ? 0 : (run.count - 1) / kSampleDistance;
    while (low < high) {
        const std::uint32_t middle = low + (high - low + 1) / 2;
        if (nameOffset(run, middle * kSampleDistance) <= name)
            low = middle;
        else
            high = middle - 1;
    }
    std::uint32_t index = low * kSampleDistance;
    for (std::uint32_t offset = nameOffset(run, index); offset < name; offset = nameAfter(offset))
        ++index;
    return {run.link, index};
}

/// Takes in the files that have been added to a folder since its last search.
void PathArena::takeInChildren(Id parent, WideFolder& wide) {
    const auto hash = [this](std::uint32_t offset) {
        const std::span<const std::uint8_t> name = storedNameAt(offset);
        return hashOf(name.data(), name.size(), seed_);
    };
    const Link last = arrays_.folders[parent].last;
    if (wide.seen == kNone) {
        wide.runs.reserveFor(1);
        wide.seen = nextOf(last);
        if ((wide.seen & kFolderLink) == 0) wide.runs.append(wide.seen);
    }
    while (true) {
        if ((wide.seen & kFolderLink) == 0) {
            const Run run = runAt(wide.seen);
            if (run.folder != parent) refuse();
            std::uint32_t offset = nameOffset(run, std::min(wide.seenInRun, run.count - 1));
            if (wide.seenInRun == run.count) offset = nameAfter(offset);
            for (; wide.seenInRun < run.count; ++wide.seenInRun, offset = nameAfter(offset)) {
                const std::span<const std::uint8_t> name = storedNameAt(offset);
                wide.names.reserveForOne(offset, hash);
                const bool isThere = wide.names.find(hash(offset), [&](std::uint32_t other) {
                    return hasName(other, name);
                }) != IdTable::kNone;
                if (!isThere) wide.names.insert(hash(offset), offset);
            }
        }
        if (wide.seen == last) return;
        const Link next = itemAfter(wide.seen);
        if ((next & kFolderLink) == 0) wide.runs.push(next);
        wide.seen = next;
        wide.seenInRun = 0;
    }
}

// --- Writing.

void PathArena::requireRoom(std::size_t nameBytes, std::size_t folders) const {
    if (arrays_.names.size() + nameBytes > maxNameBytes_ ||
        arrays_.folders.size() + folders > maxFolders_)
        throw SetTooLargeException();
}

/// Begins a run that is in no ring yet. There is room then for its names, which the caller appends
/// before the run is finished. Nothing else has changed, so that only the bytes would be undone.
PathArena::Link PathArena::beginRun(Id id, std::uint32_t first, std::uint32_t count,
                                    std::size_t namesSize) {
    const bool isWide = namesSize > 0xFFFF;
    const std::size_t samplesSize = std::size_t{sampleCount(count)} * (isWide ? 4 : 2);
    const std::size_t most = kMaxRunHead + samplesSize + namesSize + kMaxVarintSize + 1;
    requireRoom(most, 0);
    arrays_.names.reserveFor(most);

    const auto link = static_cast<Link>(arrays_.names.size());
    std::array<std::uint8_t, kMaxRunHead> head;
    store(head.data(), kNone);
    std::uint8_t* end = writeVarint(id, head.data() + kLinkSize);
    end = writeVarint(first, end);
    const std::uint64_t flags = isWide && samplesSize > 0 ? kWideSamples : 0;
    end = writeVarint(std::uint64_t{count} << kCountShift | flags, end);
    arrays_.names.append(head.data(), static_cast<std::size_t>(end - head.data()));
    arrays_.names.extend(samplesSize);
    return link;
}

/// Fills in where every eighth name of a run stands.
void PathArena::finishRun(Link link) {
    const Run run = runAt(link);
    if (sampleCount(run.count) == 0) return;
    std::uint8_t* sample = &arrays_.names.at(run.samples);
    std::uint32_t name = run.names;
    for (std::uint32_t index = 1; index < run.count; ++index) {
        name = nameAfter(name);
        if (index % kSampleDistance != 0) continue;
        if (run.hasWideSamples)
            store(sample, name - run.names);
        else
            store(sample, static_cast<std::uint16_t>(name - run.names));
        sample += run.hasWideSamples ? 4 : 2;
    }
}

/// Enters a folder record as that of a file of a run.
void PathArena::makeFormerFile(Id id, Link run) {
    const auto hash = [this](Id other) { return hashOfFormerFile(other); };
    arrays_.formerFiles.reserveForOne(id, hash);
    arrays_.formerFiles.insert(hash(id), id);
    arrays_.names.at(runAt(run).countAt) |= kHasFormerFiles;
}

void PathArena::finishLoading() noexcept {
    arrays_.names.shrink();
    arrays_.folders.shrink();
    loadedFolders_ = folderCount();
    openRun_ = kNone;
}

/// Writes position and name of a folder, and its record.
void PathArena::writeFolder(Id parent, std::uint32_t position,
                            std::span<const std::uint8_t> storedName) {
    const std::size_t most = 5 + storedName.size();
    requireRoom(most, 1);
    arrays_.names.reserveFor(most);
    arrays_.folders.reserveFor(1);

    const auto offset = static_cast<std::uint32_t>(arrays_.names.size());
    std::array<std::uint8_t, 5> number;
    const std::uint8_t* const end = writeVarint(position, number.data());
    arrays_.names.append(number.data(), static_cast<std::size_t>(end - number.data()));
    arrays_.names.append(storedName.data(), storedName.size());
    arrays_.folders.append({parent, offset, kNone, kNone});
    openRun_ = kNone;  // the names end with something else now
}

void PathArena::setNext(Link link, Link next) noexcept {
    if ((link & kFolderLink) != 0)
        arrays_.folders.at(link & ~kFolderLink).next = next;
    else
        store(&arrays_.names.at(link), next);
}

void PathArena::appendItem(Id id, Link link) noexcept {
    const Link last = arrays_.folders[id].last;
    setNext(link, last == kNone ? link : nextOf(last));
    if (last != kNone) setNext(last, link);
    arrays_.folders.at(id).last = link;
}

// --- Adding as a whole.

PathArena::Transaction::Transaction(PathArena& arena) : arena_(arena) {
    arena.prepareForAdding();
    namesBefore_ = arena.arrays_.names.size();
    foldersBefore_ = arena.arrays_.folders.size();
}

// What is undone was made or looked at by this transaction, so that reading it again refuses
// nothing. NOLINTNEXTLINE(bugprone-exception-escape): said above
PathArena::Transaction::~Transaction() {
    if (isCommitted_) return;
    for (auto change = changes_.rbegin(); change != changes_.rend(); ++change) undo(*change);
    // Folders that were files are gone already; the others have no entry but in the table.
    for (auto id = static_cast<Id>(foldersBefore_); id < arena_.folderCount(); ++id)
        if (arena_.arrays_.folders[id].name != kNone)
            arena_.folders_.erase(id, [this](Id other) { return arena_.hashOfFolder(other); });
    arena_.arrays_.names.truncate(namesBefore_);
    arena_.arrays_.folders.truncate(foldersBefore_);
    arena_.openRun_ = kNone;
    arena_.wideFolders_.clear();
}

// NOLINTNEXTLINE(bugprone-exception-escape): as for the destructor
void PathArena::Transaction::undo(const Change& change) noexcept {
    Arrays& arrays = arena_.arrays_;
    switch (change.kind) {
        case Change::Kind::kLastItem: {
            const Link first = arena_.nextOf(arrays.folders[change.of].last);
            arrays.folders.at(change.of).last = change.before;
            if (change.before != kNone) arena_.setNext(change.before, first);
            break;
        }
        case Change::Kind::kRunCount:
        case Change::Kind::kRunFlags:
            arrays.names.at(change.of) = static_cast<std::uint8_t>(change.before);
            break;
        case Change::Kind::kFormerFile: {
            arrays.formerFiles.erase(change.of,
                                     [this](Id other) { return arena_.hashOfFormerFile(other); });
            const auto hash = [this](Id other) { return arena_.hashOfFolder(other); };
            if (change.before == kNone)
                arena_.folders_.erase(change.of, hash);
            else
                arena_.folders_.replace(hash(change.of), change.of, change.before);
            arrays.folders.at(change.of).name = kNone;
            break;
        }
    }
}

/// Remembers which item is the last of a folder. What is made in this transaction goes as a whole.
void PathArena::Transaction::noteLastItem(Id folder) {
    const Link last = arena_.arrays_.folders[folder].last;
    if (last != kNone) static_cast<void>(arena_.nextOf(last));  // refuses a link that leads nowhere
    if (folder < foldersBefore_) changes_.push_back({Change::Kind::kLastItem, folder, last});
}

PathArena::Transaction::Found PathArena::Transaction::find(
    Id parent, std::span<const std::uint8_t> storedName) {
    const Id id = arena_.folders_.find(arena_.hashOfName(parent, storedName), [&](Id other) {
        return arena_.arrays_.folders[other].parent == parent &&
               arena_.hasName(arena_.storedNameOffset(other), storedName);
    });
    if (id == IdTable::kNone) return {kNone, arena_.findFile(parent, storedName)};
    if (id >= arena_.loadedFolders_ || arena_.isTwinChecked_[id]) return {id, {kNone, 0}};

    // In a trie that was loaded, a file of the same name may stand before the folder: the first
    // equal child is the one.
    const Place file = arena_.findFile(parent, storedName);
    if (file.link != kNone && arena_.positionOf(file) < arena_.positionOf(id)) {
        const Id former = arena_.folderAt(file);
        return former != kNone ? Found{former, {kNone, 0}} : Found{kNone, file};
    }
    arena_.isTwinChecked_[id] = true;
    return {id, {kNone, 0}};
}

/// A record and its place in the table; in no ring yet.
PathArena::Id PathArena::Transaction::addFolder(Id parent, std::uint32_t position,
                                                std::span<const std::uint8_t> storedName) {
    const auto hash = [this](Id other) { return arena_.hashOfFolder(other); };
    const auto id = static_cast<Id>(arena_.arrays_.folders.size());
    arena_.folders_.reserveForOne(id, hash);
    arena_.writeFolder(parent, position, storedName);
    arena_.foldersByName_.reset();
    return id;
}

PathArena::Id PathArena::Transaction::makeFolder(Id parent,
                                                 std::span<const std::uint8_t> storedName) {
    noteLastItem(parent);
    try {
        const Id id = addFolder(parent, arena_.childCount(parent), storedName);
        arena_.folders_.insert(arena_.hashOfName(parent, storedName), id);
        arena_.appendItem(parent, kFolderLink | id);
        return id;
    } catch (...) {
        if (parent < foldersBefore_) changes_.pop_back();
        throw;
    }
}

PathArena::Id PathArena::Transaction::makeFolderOf(const Place& file) {
    if (changes_.size() + 2 > changes_.capacity()) changes_.reserve(2 * changes_.size() + 2);
    const auto hash = [this](Id other) { return arena_.hashOfFormerFile(other); };
    const auto newId = static_cast<Id>(arena_.arrays_.folders.size());
    arena_.arrays_.formerFiles.reserveForOne(newId, hash);
    const Run run = arena_.runAt(file.link);
    const std::span<const std::uint8_t> stored =
        arena_.storedNameAt(arena_.nameOffset(run, file.index));
    const std::vector<std::uint8_t> name(stored.begin(), stored.end());  // the array may move

    const Id id = addFolder(run.folder, run.first + file.index, name);
    arena_.arrays_.formerFiles.insert(hash(id), id);
    changes_.push_back({Change::Kind::kRunFlags, run.countAt, arena_.arrays_.names[run.countAt]});
    arena_.arrays_.names.at(run.countAt) |= kHasFormerFiles;
    const std::uint64_t nameHash = arena_.hashOfName(run.folder, name);
    const Id twin = arena_.folders_.find(nameHash, [&](Id other) {
        return arena_.arrays_.folders[other].parent == run.folder &&
               arena_.hasName(arena_.storedNameOffset(other), name);
    });
    if (twin == IdTable::kNone)
        arena_.folders_.insert(nameHash, id);
    else
        arena_.folders_.replace(nameHash, twin, id);
    changes_.push_back({Change::Kind::kFormerFile, id, twin});
    return id;
}

PathArena::Appended PathArena::Transaction::appendFiles(Id folder,
                                                        std::span<const std::uint8_t> storedNames,
                                                        std::uint32_t count) {
    assert(count > 0);
    if (arena_.openRun_ != kNone && arena_.arrays_.folders[folder].last == arena_.openRun_) {
        const Run run = arena_.runAt(arena_.openRun_);
        if (run.count + count <= kMaxPlainRun) {
            extendOpenRun(run, storedNames, count);
            return {run.link, run.count};
        }
    }
    noteLastItem(folder);
    try {
        const Link link =
            arena_.beginRun(folder, arena_.childCount(folder), count, storedNames.size());
        arena_.arrays_.names.append(storedNames.data(), storedNames.size());
        arena_.finishRun(link);
        arena_.appendItem(folder, link);
        arena_.openRun_ = count < kMaxPlainRun ? link : kNone;
        return {link, 0};
    } catch (...) {
        if (folder < foldersBefore_) changes_.pop_back();
        throw;
    }
}

/// Lets the run that ends the names grow. Its count takes one byte, as long as it has no samples.
void PathArena::Transaction::extendOpenRun(const Run& run,
                                           std::span<const std::uint8_t> storedNames,
                                           std::uint32_t count) {
    FlatArray<std::uint8_t>& names = arena_.arrays_.names;
    arena_.requireRoom(storedNames.size(), 0);
    names.reserveFor(storedNames.size());
    changes_.push_back({Change::Kind::kRunCount, run.countAt, names[run.countAt]});
    names.append(storedNames.data(), storedNames.size());
    names.at(run.countAt) = static_cast<std::uint8_t>(names[run.countAt] + (count << kCountShift));
}

}  // namespace compressedpaths
