// Finding folders, and files by their names, without going through the whole set.

#include <algorithm>
#include <cstring>
#include <numeric>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

using Id = PathArena::Id;

constexpr Id idOf(FolderId folder) noexcept {
    return static_cast<Id>(folder);
}

/// True if the bits of a name begin with those of another. No code word begins another, so that the
/// characters do then, too.
bool beginsWith(const NameView& name, const NameView& text) noexcept {
    if (name.isAnyKey || name.length < text.length) return false;
    const std::size_t whole = text.length / 8;
    if (std::memcmp(name.data, text.data, whole) != 0) return false;
    const unsigned rest = (1U << text.length % 8) - 1;
    return rest == 0 || ((name.data[whole] ^ text.data[whole]) & rest) == 0;
}

}  // namespace

std::optional<FlatArray<std::uint8_t>> HuffmanPathTree::storedNameOf(
    std::u16string_view component) const {
    FlatArray<std::uint8_t> name;
    try {
        codeTables_.appendCode(component, name);
    } catch (const CodeNotFoundException&) {
        return std::nullopt;  // no name of the set can have such a character
    } catch (const NoCodeForEmptyString&) {
        return std::nullopt;
    }
    return name;
}

std::optional<FolderId> HuffmanPathTree::folderOf(
    const std::vector<std::u16string>& components) const {
    Id folder = PathArena::kRoot;
    for (const std::u16string& component : components) {
        const auto name = storedNameOf(component);
        if (!name) return std::nullopt;
        folder = arena().findFolder(folder, name->values());
        if (folder == PathArena::kNone) return std::nullopt;
    }
    return FolderId{folder};
}

PathArena::Id HuffmanPathTree::existing(FolderId folder) const {
    if (idOf(folder) >= arena().folderCount()) throw InvalidTrackException();
    return idOf(folder);
}

std::vector<FolderId> HuffmanPathTree::foldersIn(FolderId folder) const {
    const std::vector<Id> ids = arena().foldersIn(existing(folder));
    std::vector<FolderId> folders(ids.size());
    std::transform(ids.begin(), ids.end(), folders.begin(), [](Id id) { return FolderId{id}; });
    return folders;
}

std::vector<FolderId> HuffmanPathTree::foldersNamed(FolderId folder, std::u16string_view name,
                                                    char16_t filler) const {
    std::vector<FolderId> found;
    const std::span<const Id> inFolder = arena().foldersByNameIn(existing(folder));
    for (std::u16string wanted(name);; wanted += filler) {
        const auto stored = storedNameOf(wanted);
        if (!stored && !wanted.empty()) break;
        if (!stored) continue;
        if (*stored->data() >= kLongName) {
            appendLongNamed(inFolder, name, filler, found);
            break;
        }
        const std::span<const Id> from = arena().fromName(inFolder, stored->values());
        // Shorter names come first: once there is none from here on, there is no longer one.
        if (from.empty()) break;
        for (const Id id : from) {
            if (!arena().isNamed(id, stored->values())) break;
            found.push_back(FolderId{id});
        }
    }
    std::sort(found.begin(), found.end());
    // An order from outside may have folders twice, or in others.
    found.erase(std::unique(found.begin(), found.end()), found.end());
    std::erase_if(found, [&](FolderId id) { return parentOf(id) != folder; });
    return found;
}

/// Long names are the last of a folder. They are in no order that says how long they are.
void HuffmanPathTree::appendLongNamed(std::span<const PathArena::Id> inFolder,
                                      std::u16string_view name, char16_t filler,
                                      std::vector<FolderId>& found) const {
    const std::uint8_t shortest = kLongName;
    const std::span<const Id> byName = arena().fromName(inFolder, {&shortest, 1});
    std::vector<Id> ids(byName.begin(), byName.end());
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    std::uint32_t end = 0;
    for (const Id id : ids) {
        if (arena().nameAfter(id, end).isAnyKey) continue;  // no name that is text
        const std::u16string whole = nameOf(FolderId{id});
        if (whole.starts_with(name) &&
            whole.find_first_not_of(filler, name.size()) == std::u16string::npos)
            found.push_back(FolderId{id});
    }
}

std::u16string HuffmanPathTree::nameOf(FolderId folder) const {
    std::u16string name;
    if (existing(folder) != PathArena::kRoot)
        codeTables_.appendText(arena().nameOf(idOf(folder)), name);
    return name;
}

FolderId HuffmanPathTree::parentOf(FolderId folder) const {
    const Id id = existing(folder);  // of the root, what its record holds says nothing
    return FolderId{id == PathArena::kRoot ? id : arena().parentOf(id)};
}

/// The entries in the order of their folders, those of one folder in the order of their numbers.
const FlatArray<std::uint32_t>& HuffmanPathTree::entriesByFolder() const {
    return entriesByFolder_.get([this] {
        FlatArray<std::uint32_t> order;
        std::vector<std::uint32_t> ends(arena().folderCount() + 1, 0);
        forEachEntry([&](const FolderEntries::Cursor& entry) {
            ++ends.at(std::size_t{folderOfEntry(entry.entry.place)} + 1);
        });
        std::partial_sum(ends.begin(), ends.end(), ends.begin());
        order.assign(entries_.size(), 0);
        forEachEntry([&](const FolderEntries::Cursor& entry) {
            order.at(ends[folderOfEntry(entry.entry.place)]++) =
                static_cast<std::uint32_t>(entry.number);
        });
        return order;
    });
}

/// Calls `visit(cursor)` for the entries of a folder, ascending, as long as it returns true.
template <class Visit>
void HuffmanPathTree::forEachEntryOf(Id folder, Visit visit) const {
    const std::span<const std::uint32_t> order = entriesByFolder().values();
    auto entry = std::partition_point(order.begin(), order.end(), [&](std::uint32_t number) {
        return folderOfEntry(entryAt(number).entry.place) < folder;
    });
    // Each entry once, and no more paths than there are, so that whatever is said here ends soon.
    std::uint64_t left = entries_.pathCount();
    for (auto before = entry; entry != order.end(); before = entry++) {
        const FolderEntries::Cursor cursor = entryAt(*entry);
        if (folderOfEntry(cursor.entry.place) != folder) return;
        if ((entry != before && *entry <= *before) || cursor.entry.pathCount > left)
            throw InvalidImageException();
        left -= cursor.entry.pathCount;
        if (!visit(cursor)) return;
    }
}

FolderEntries::Cursor HuffmanPathTree::entryAt(std::uint32_t number) const {
    if (number >= entries_.size()) throw InvalidImageException();
    return entries_.at(number);
}

std::vector<HuffmanPathTree::NumberRange> HuffmanPathTree::entriesOf(FolderId folder) const {
    std::vector<NumberRange> ranges;
    forEachEntryOf(existing(folder), [&](const FolderEntries::Cursor& entry) {
        if (entry.entry.pathCount > 0) ranges.push_back({entry.pathsBefore + 1, entry.pathsUpTo()});
        return true;
    });
    return ranges;
}

std::optional<std::size_t> HuffmanPathTree::numberOf(FolderId folder,
                                                     const std::u16string& fileName) const {
    const Id id = existing(folder);
    const auto name = storedNameOf(fileName);
    if (!name) return std::nullopt;
    const NameView wanted = viewName(name->data(), name->end());
    std::optional<std::size_t> found;
    forEachEntryOf(id, [&](const FolderEntries::Cursor& entry) {
        FileNames files(*this, entry.entry, 0);
        for (std::uint64_t index = 0; index < entry.entry.pathCount; ++index) {
            if (!files.isThere()) break;
            if (!isSameName(files.next().name, wanted)) continue;
            found = entry.pathsBefore + index + 1;
            return false;
        }
        return true;
    });
    return found;
}

std::vector<std::size_t> HuffmanPathTree::numbersNamed(FolderId folder, std::u16string_view name,
                                                       char16_t filler) const {
    const Id id = existing(folder);
    std::vector<std::size_t> numbers;
    const auto begin = storedNameOf(name.empty() ? std::u16string_view(&filler, 1) : name);
    if (!begin) return numbers;
    const NameView wanted = viewName(begin->data(), begin->end());
    std::u16string whole;
    forEachEntryOf(id, [&](const FolderEntries::Cursor& entry) {
        FileNames files(*this, entry.entry, 0);
        for (std::uint64_t index = 0; index < entry.entry.pathCount; ++index) {
            if (!files.isThere()) break;
            const NameView view = files.next().name;
            if (!beginsWith(view, wanted)) continue;
            whole.clear();
            codeTables_.appendText(view, whole);
            if (whole.find_first_not_of(filler, name.size()) == std::u16string::npos)
                numbers.push_back(entry.pathsBefore + index + 1);
        }
        return true;
    });
    return numbers;
}

// --- Going through entries.

/// The entry that a range begins in, if any entry has numbers of it.
std::optional<FolderEntries::Cursor> HuffmanPathTree::firstEntryOf(NumberRange range) const {
    if (range.last < range.first) return std::nullopt;
    if (range.first == 0 || range.last > pathCount) throw InvalidPathNumberException();
    return entryHolding(range.first);
}

void HuffmanPathTree::forEachEntry(
    NumberRange range,
    const std::function<void(FolderId folder, NumberRange numbers)>& visit) const {
    std::optional<FolderEntries::Cursor> entry = firstEntryOf(range);
    if (!entry) return;
    while (entry->pathsBefore < range.last) {
        const NumberRange numbers{std::max<std::uint64_t>(range.first, entry->pathsBefore + 1),
                                  std::min<std::uint64_t>(range.last, entry->pathsUpTo())};
        if (numbers.first <= numbers.last) {
            const Id folder = folderOfEntry(entry->entry.place);
            if (folder >= arena().folderCount()) throw InvalidImageException();
            visit(FolderId{folder}, numbers);
        }
        if (entry->number + 1 == entries_.size()) return;
        entries_.advance(*entry);
    }
}

}  // namespace compressedpaths
