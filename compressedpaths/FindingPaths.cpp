// Finding folders, files and names without going through the whole set.

#include <algorithm>
#include <array>
#include <bitset>
#include <cstring>
#include <memory>
#include <numeric>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

using Id = PathArena::Id;

constexpr Id idOf(FolderId folder) noexcept {
    return static_cast<Id>(folder);
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

std::u16string HuffmanPathTree::nameOf(FolderId folder) const {
    std::u16string name;
    if (existing(folder) != PathArena::kRoot)
        codeTables_.appendText(arena().nameOf(idOf(folder)), name);
    return name;
}

FolderId HuffmanPathTree::parentOf(FolderId folder) const {
    return FolderId{arena().parentOf(existing(folder))};
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
    for (; entry != order.end(); ++entry) {
        const FolderEntries::Cursor cursor = entryAt(*entry);
        if (folderOfEntry(cursor.entry.place) != folder || !visit(cursor)) return;
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

// --- Names that hold a text.

namespace {

/// The code bits of a text, and where they can stand in coded names. A text of many bits covers
/// whole bytes wherever it begins in a byte; the first two of these, or one, are looked up at each
/// byte of the names, for all eight beginnings at once.
class BitPattern {
public:
    explicit BitPattern(const NameView& text) {
        const std::size_t covered = text.length < 7 ? 0 : (text.length - 7) / 8;
        width_ = covered >= 2 ? 2 : static_cast<unsigned>(covered);
        if (width_ == 0) return;
        for (unsigned shift = 0; shift < 8; ++shift) {
            // The whole bytes of a text that begins at bit `shift` hold its bits from `skipped` on.
            const unsigned skipped = (8 - shift) % 8;
            unsigned bits = 0;
            for (unsigned bit = 0; bit < 8 * width_; ++bit) {
                const std::size_t at = skipped + bit;
                bits |= static_cast<unsigned>(text.data[at / 8] >> at % 8 & 1) << bit;
            }
            canStand_.set(bits);
        }
    }

    /// True if names have to be decoded, each of them, to know.
    bool isTooShort() const noexcept { return width_ == 0; }

    /// The first place from `from` on, before `end`, where the text can stand; `end` if there is
    /// none. One byte past `end` is readable.
    const std::uint8_t* find(const std::uint8_t* from, const std::uint8_t* end) const noexcept {
        const unsigned mask = width_ == 2 ? 0xFFFF : 0xFF;
        for (; from < end; ++from) {
            std::uint16_t bits = 0;
            std::memcpy(&bits, from, sizeof bits);
            if (canStand_[bits & mask]) return from;
        }
        return end;
    }

private:
    unsigned width_ = 0;  // bytes that are looked up
    std::bitset<0x10000> canStand_;
};

}  // namespace

void HuffmanPathTree::forEachNameWith(std::u16string_view text, NumberRange range,
                                      const std::function<void(std::size_t number)>& visit) const {
    if (range.last < range.first) return;
    if (range.first == 0 || range.last > pathCount) throw InvalidPathNumberException();
    std::optional<FolderEntries::Cursor> entry = entryHolding(range.first);
    if (!entry) return;
    FlatArray<std::uint8_t> coded;
    if (!text.empty()) {
        auto name = storedNameOf(text);
        if (!name) return;
        coded = std::move(*name);
    }
    const auto pattern = std::make_unique<BitPattern>(
        coded.isEmpty() ? NameView{} : viewName(coded.data(), coded.end()));

    std::u16string name;
    for (std::size_t number = range.first;;) {
        const std::size_t end = std::min<std::uint64_t>(range.last, entry->pathsUpTo()) + 1;
        FileNames files(*this, entry->entry, number - entry->pathsBefore - 1);
        while (number < end) {
            if (!pattern->isTooShort()) {
                const std::uint64_t passed =
                    files.skipTo([&](const std::uint8_t* from,
                                     const std::uint8_t* to) { return pattern->find(from, to); },
                                 end - number);
                number += static_cast<std::size_t>(passed);
                if (number == end) break;
            }
            name.clear();
            const NameView view = files.next().name;
            if (!view.isAnyKey) codeTables_.appendText(view, name);
            if (name.find(text) != std::u16string::npos) visit(number);
            ++number;
        }
        if (number > range.last || entry->number + 1 == entries_.size()) break;
        entries_.advance(*entry);
    }
}

/// Passes over names up to one in which `find` finds something, or over `most`; returns how many.
/// Names that are in no run are not looked into, so that they stop it.
template <class Find>
std::uint64_t HuffmanPathTree::FileNames::skipTo(Find find, std::uint64_t most) {
    if (!isInRun()) return 0;
    const PathArena& arena = set_.arena();
    const std::uint64_t inRun =
        std::min<std::uint64_t>(most, run_.count - entry_.place.skip - index_);
    const auto last = static_cast<std::uint32_t>(entry_.place.skip + index_ + inRun - 1);
    const std::uint32_t end = arena.nameAfter(arena.nameOffset(run_, last));
    if (end > arena.arrays().names.size()) throw InvalidImageException();
    const std::uint8_t* const names = arena.arrays().names.data();
    const auto hit = static_cast<std::uint32_t>(find(names + offset_, names + end) - names);
    std::uint64_t passed = 0;
    for (std::uint32_t next = 0; passed < inRun; ++passed) {
        next = arena.nameAfter(offset_);
        if (next > hit) break;
        offset_ = next;
    }
    index_ += passed;
    return passed;
}

}  // namespace compressedpaths
