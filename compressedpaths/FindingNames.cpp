// Finding the names that hold a text, by its code bits.

#include <algorithm>
#include <memory>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/store/BitPattern.hpp"

namespace compressedpaths {

/// Looks for a text in coded names, and decodes those that may hold it.
class HuffmanPathTree::NameSearch {
public:
    NameSearch(const HuffmanPathTree& set, std::u16string_view text) : set_(set), text_(text) {
        if (text.empty()) return;
        const auto coded = set.storedNameOf(text);
        isPossible_ = coded.has_value();
        if (coded) pattern_ = std::make_unique<BitPattern>(viewName(coded->data(), coded->end()));
    }

    /// False if the code cannot write the text, so that no name holds it.
    bool isPossible() const noexcept { return isPossible_; }

    /// The first byte that the text can begin in, or `end`.
    const std::uint8_t* find(const std::uint8_t* from, const std::uint8_t* end) const noexcept {
        return pattern_ == nullptr ? from : pattern_->find(from, end);
    }
    bool isIn(const NameView& name) {
        name_.clear();
        if (!name.isAnyKey) set_.codeTables_.appendText(name, name_);
        return name_.find(text_) != std::u16string::npos;
    }

    bool isWithout(const FolderEntries::Cursor& entry, const FolderEntries::Cursor& following);

private:
    bool canBeBetween(std::uint32_t begin, std::uint32_t end) noexcept;

    const HuffmanPathTree& set_;
    std::u16string_view text_;
    bool isPossible_ = true;
    std::unique_ptr<const BitPattern> pattern_;  // none of an empty text
    std::u16string name_;
    std::uint32_t clearFrom_ = 0;  // the text begins nowhere from here
    std::uint32_t clearTo_ = 0;    // up to here,
    bool isHitAtEnd_ = false;      // but here
    std::uint64_t ahead_ = 64;     // bytes past those asked for that are looked through with them
};

/// True if no name of an entry can hold the text. Runs that follow one another in the entries
/// mostly do so in the names, and are looked through in one go, without asking where each name
/// ends. What stands between two runs, as names of folders do, is looked through with them.
bool HuffmanPathTree::NameSearch::isWithout(const FolderEntries::Cursor& entry,
                                            const FolderEntries::Cursor& following) {
    constexpr std::uint64_t kLongest = 256;  // bytes of a name and what belongs to it, for this
    const PathArena::Link begin = entry.entry.place.run;
    const PathArena::Link end = following.entry.place.run;
    if (pattern_ == nullptr || begin >= end || end >= set_.arena().arrays().names.size() ||
        end - begin > kLongest * (entry.entry.pathCount + 1))
        return false;
    return FileNames(set_, entry.entry, 0).isInRunUpTo(entry.entry.pathCount) &&
           !canBeBetween(begin, end);
}

/// True if the text can stand between two places in the names.
bool HuffmanPathTree::NameSearch::canBeBetween(std::uint32_t begin, std::uint32_t end) noexcept {
    constexpr std::uint64_t kMostAhead = 1 << 14;
    const FlatArray<std::uint8_t>& names = set_.arena().arrays().names;
    if (begin < clearFrom_ || begin > clearTo_) {
        clearFrom_ = clearTo_ = begin;
        isHitAtEnd_ = false;
    }
    if (clearTo_ >= end) return false;
    if (isHitAtEnd_ && clearTo_ >= begin) return true;

    clearFrom_ = clearTo_;
    const std::uint64_t stop =
        std::min<std::uint64_t>(names.size(), end + ahead_ + pattern_->byteSize());
    ahead_ = std::min(2 * ahead_, kMostAhead);  // who asks for few entries ends soon
    const std::uint8_t* const hit = find(names.data() + clearFrom_, names.data() + stop);
    clearTo_ = static_cast<std::uint32_t>(hit - names.data());
    isHitAtEnd_ = clearTo_ < stop;
    // A text that goes on past the bytes that were looked through has not been found.
    if (!isHitAtEnd_ && stop < names.size())
        clearTo_ -= static_cast<std::uint32_t>(pattern_->byteSize());
    return clearTo_ < end;
}

void HuffmanPathTree::forEachNameWith(std::u16string_view text, NumberRange range,
                                      const std::function<void(std::size_t number)>& visit) const {
    std::optional<FolderEntries::Cursor> entry = firstEntryOf(range);
    NameSearch search(*this, text);
    if (!entry || !search.isPossible()) return;
    // Entries have files of their own, but for few after paths that were added on their own. An
    // image may say that all have the same.
    constexpr std::uint64_t kMostLooks = 64;
    std::uint64_t bytesLeft = kMostLooks * arena().arrays().names.size();
    const auto find = [&](const std::uint8_t* from, const std::uint8_t* end) {
        const std::uint8_t* const hit = search.find(from, end);
        const auto count = static_cast<std::uint64_t>(hit - from);
        if (count > bytesLeft) throw InvalidImageException();
        bytesLeft -= count;
        return hit;
    };
    const auto visitFiles = [&](std::size_t number, std::size_t end) {
        FileNames files(*this, entry->entry, number - entry->pathsBefore - 1);
        for (; number < end; ++number) {
            number += static_cast<std::size_t>(files.skipTo(find, end - number));
            if (number == end) return;
            if (search.isIn(files.next().name)) visit(number);
        }
    };
    for (std::size_t number = range.first; number <= range.last;) {
        const std::size_t end = std::min<std::uint64_t>(range.last, entry->pathsUpTo()) + 1;
        if (entry->number + 1 == entries_.size()) return visitFiles(number, end);
        FolderEntries::Cursor following = *entry;
        entries_.advance(following);
        if (!search.isWithout(*entry, following)) visitFiles(number, end);
        number = end;
        entry = following;
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

std::vector<bool> HuffmanPathTree::foldersNamedWith(std::u16string_view text) const {
    NameSearch search(*this, text);
    std::vector<bool> isNamed(arena().folderCount(), false);
    if (!search.isPossible()) return isNamed;
    isNamed[PathArena::kRoot] = text.empty();
    std::uint32_t end = 0;
    for (Id id = 1; id < arena().folderCount(); ++id) {
        const NameView name = arena().nameAfter(id, end);
        isNamed[id] = search.find(name.data, name.end()) != name.end() && search.isIn(name);
    }
    return isNamed;
}

}  // namespace compressedpaths
