// Paths as text: decoded straight into the caller's string, a folder once for all its files.

#include <algorithm>
#include <array>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

using Id = PathArena::Id;

/// The folders down to one, root side first. Few are so deep that the array does not do.
class Chain {
public:
    Chain(const PathArena& arena, Id folder) {
        for (Id id = folder; id != PathArena::kRoot; id = arena.parentOf(id)) {
            arena.prefetchName(id);  // by the time that it is decoded, it is there
            push(id);
        }
    }

    std::size_t size() const noexcept { return size_; }
    Id operator[](std::size_t level) const noexcept {
        const std::size_t i = size_ - 1 - level;
        return i < few_.size() ? few_[i] : more_[i - few_.size()];
    }

private:
    void push(Id id) {
        if (size_ < few_.size())
            few_[size_] = id;
        else
            more_.push_back(id);
        ++size_;
    }

    std::array<Id, 30> few_;  // the deepest first
    std::vector<Id> more_;
    std::size_t size_ = 0;
};

/// Cuts a text to what it was unless all that was to be appended is there.
template <class Text>
class Appending {
public:
    explicit Appending(Text& text) noexcept : text_(text), size_(text.size()) {}
    Appending(const Appending&) = delete;
    Appending& operator=(const Appending&) = delete;
    ~Appending() {
        if (!isKept_) text_.resize(size_);
    }
    void keep() noexcept { isKept_ = true; }

private:
    Text& text_;
    std::size_t size_;
    bool isKept_ = false;
};

/// Appends what stands before the files of a folder.
template <class Text, class Separator>
void appendFolder(const PathArena& arena, const CodeTables& tables, const Chain& chain,
                  Separator separator, Text& text) {
    std::uint32_t end = 0;
    for (std::size_t level = 0; level < chain.size(); ++level) {
        tables.appendText(arena.nameAfter(chain[level], end), text);
        if (level > 0) text += separator;
    }
}

}  // namespace

template <class Text, class Separator>
void HuffmanPathTree::appendPath(std::size_t number, Separator separator, Text& text) const {
    if (number == 0 || number > pathCount) throw InvalidPathNumberException();
    const auto entry = entryHolding(number);
    if (!entry) throw InvalidPathNumberException();

    Appending appending(text);
    const FileName file = fileNameOf(entry->entry, number - entry->pathsBefore - 1);
    appendFolder(arena(), codeTables_, Chain(arena(), file.folder), separator, text);
    codeTables_.appendText(file.name, text);
    appending.keep();
}

void HuffmanPathTree::appendText(std::size_t number, std::string_view separator,
                                 std::string& text) const {
    appendPath(number, separator, text);
}

void HuffmanPathTree::appendText(std::size_t number, std::u16string_view separator,
                                 std::u16string& text) const {
    appendPath(number, separator, text);
}

/// The name of a file of an entry, counted from 0, and its folder.
HuffmanPathTree::FileName HuffmanPathTree::fileNameOf(const FolderEntries::Entry& entry,
                                                      std::uint64_t index) const {
    if (entry.place.run != PathArena::kNone) {
        const PathArena::Run run = arena().runAt(entry.place.run);
        arena().prefetchFolder(run.folder);  // while the name is found
        const std::uint64_t inRun = entry.place.skip + index;
        if (inRun < run.count)
            return {run.folder,
                    arena().nameAt(arena().nameOffset(run, static_cast<std::uint32_t>(inRun)))};
    }
    const PathArena::Place file = fileOf(entry, index);
    return {arena().folderOf(file), arena().nameOf(file)};
}

HuffmanPathTree::FileNames::FileNames(const HuffmanPathTree& set, const FolderEntries::Entry& entry,
                                      std::uint64_t index)
    : set_(set), entry_(entry), index_(index) {
    if (entry.place.run == PathArena::kNone) return;
    run_ = set.arena().runAt(entry.place.run);
    if (isInRun())
        offset_ =
            set.arena().nameOffset(run_, static_cast<std::uint32_t>(entry.place.skip + index));
}

/// A file past those of the run. Folders can have many items: the way through them goes on where it
/// ended for the file before.
std::optional<PathArena::Place> HuffmanPathTree::FileNames::findAfterRun() {
    const auto file = set_.findFile(entry_, index_, item_);
    if (file) item_ = file->link;
    return file;
}

/// False past the files that the folder has.
bool HuffmanPathTree::FileNames::isThere() {
    return isInRun() || findAfterRun().has_value();
}

HuffmanPathTree::FileName HuffmanPathTree::FileNames::get() {
    if (isInRun()) return {run_.folder, set_.arena().nameAt(offset_)};
    const auto file = findAfterRun();
    if (!file) throw InvalidFileNumberException();
    return {set_.arena().folderOf(*file), set_.arena().nameOf(*file)};
}

HuffmanPathTree::FileName HuffmanPathTree::FileNames::next() {
    const FileName file = get();
    if (isInRun())
        offset_ = static_cast<std::uint32_t>(file.name.end() - set_.arena().arrays().names.data());
    ++index_;
    return file;
}

std::string_view HuffmanPathTree::FileTexts::textOf(const FileName& file) {
    if (file.folder != folder_) setFolder(file.folder);
    text_.text.resize(folderSize_);
    set_.codeTables_.appendText(file.name, text_.text);
    return text_.text;
}

void HuffmanPathTree::FileTexts::setFolder(Id folder) {
    set_.arena().chainTo(folder, chain_);
    set_.setFolders(text_, chain_, separator_);
    folderSize_ = text_.text.size();
    folder_ = folder;
}

void HuffmanPathTree::forEachText(
    std::size_t first, std::size_t last, std::string_view separator,
    const std::function<void(std::size_t number, std::string_view text)>& visit) const {
    if (last < first) return;
    if (first == 0 || last > pathCount) throw InvalidPathNumberException();
    std::optional<FolderEntries::Cursor> entry = entryHolding(first);
    if (!entry) return;

    FileTexts texts(*this, separator);
    for (std::size_t number = first;;) {
        const std::size_t end = std::min<std::uint64_t>(last, entry->pathsUpTo()) + 1;
        FileNames files(*this, entry->entry, number - entry->pathsBefore - 1);
        for (; number < end; ++number) visit(number, texts.textOf(files.next()));
        if (number > last || entry->number + 1 == entries_.size()) break;
        entries_.advance(*entry);
    }
    if (last > entries_.pathCount()) static_cast<void>(entryHolding(last));
}

/// Makes the text that of other folders. What is the same at the front stays.
void HuffmanPathTree::setFolders(FolderText& folder, std::span<const Id> folders,
                                 std::string_view separator) const {
    std::size_t shared = 0;
    if (folder.separator == separator)
        shared =
            static_cast<std::size_t>(std::mismatch(folder.folders.begin(), folder.folders.end(),
                                                   folders.begin(), folders.end())
                                         .first -
                                     folder.folders.begin());
    folder.separator = separator;
    folder.folders.resize(shared);
    folder.ends.resize(shared);
    folder.text.resize(shared == 0 ? 0 : folder.ends.back());
    folder.folders.reserve(folders.size());
    folder.ends.reserve(folders.size());
    std::uint32_t end = 0;
    if (shared > 0) static_cast<void>(arena().nameAfter(folders[shared - 1], end));
    for (std::size_t level = shared; level < folders.size(); ++level) {
        codeTables_.appendText(arena().nameAfter(folders[level], end), folder.text);
        if (level > 0) folder.text += separator;
        folder.folders.push_back(folders[level]);
        folder.ends.push_back(folder.text.size());
    }
}

}  // namespace compressedpaths
