// Many paths as text, by numbers that need not be neighbours. What one path takes is mostly waiting
// for memory, for one place after the other: the index says where the run is, the run where name
// and folder are, the folder which one is above. So some paths are taken through each of these
// steps together, and what a step needs has been asked for in the one before. Benchmark:
// openedSets.cpp.

#include <algorithm>
#include <array>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {

/// Paths on their way from a number to a name and its folder.
class HuffmanPathTree::FetchedTogether {
public:
    explicit FetchedTogether(const HuffmanPathTree& set) noexcept : set_(set) {}

    /// Finds kFetchedTogether paths at most.
    void find(std::span<const std::size_t> numbers) {
        paths_ = {all_.data(), numbers.size()};
        findBlocks(numbers);
        findEntries(numbers);
        askForFolders();
        askForNames();
        findNames();
        askForFoldersAbove();
    }

    const FileName& operator[](std::size_t i) const noexcept { return paths_[i].file; }

private:
    struct Fetched {
        std::size_t block = 0;  // of the index
        FolderEntries::Entry entry;
        std::uint64_t index = 0;  // of the file in the entry
        PathArena::Run run{};     // that it is in, if isInRun
        bool isInRun = false;
        FileName file{};
        Id above = PathArena::kRoot;  // the folder that has been asked for

        std::uint32_t indexInRun() const noexcept {
            return static_cast<std::uint32_t>(entry.place.skip + index);
        }
    };

    void findBlocks(std::span<const std::size_t> numbers) {
        for (std::size_t i = 0; i < paths_.size(); ++i) {
            requireEntryOf(numbers[i]);
            paths_[i].block = set_.entries_.blockOf(numbers[i]);
        }
    }

    /// Throws as appendText unless an entry has this number.
    void requireEntryOf(std::size_t number) const {
        const bool isThere = number > 0 && number <= set_.size();
        const bool isHeld = number <= set_.entries_.pathCount();
        if (!isThere || (!isHeld && !set_.entryHolding(number))) throw InvalidPathNumberException();
    }

    void findEntries(std::span<const std::size_t> numbers) {
        for (std::size_t i = 0; i < paths_.size(); ++i) {
            Fetched& path = paths_[i];
            const auto cursor = set_.entries_.holdingIn(path.block, numbers[i]);
            path.entry = cursor.entry;
            path.index = numbers[i] - cursor.pathsBefore - 1;
            if (path.entry.place.run != PathArena::kNone)
                set_.arena().prefetchAt(path.entry.place.run);
        }
    }

    void askForFolders() {
        for (Fetched& path : paths_) {
            const FolderEntries::Place& place = path.entry.place;
            path.isInRun = place.run != PathArena::kNone;
            if (!path.isInRun) continue;
            path.run = set_.arena().runAt(place.run);
            path.isInRun = place.skip + path.index < path.run.count;
            if (!path.isInRun) continue;
            set_.arena().prefetchFolder(path.run.folder);
            set_.arena().prefetchSample(path.run, path.indexInRun());
        }
    }

    void askForNames() {
        constexpr std::uint32_t kLine = 64;
        for (const Fetched& path : paths_) {
            if (!path.isInRun) continue;
            const auto name = set_.arena().nearName(path.run, path.indexInRun());
            // Names have some ten bytes.
            for (std::uint32_t size = 0; size <= 10 * name.left; size += kLine)
                set_.arena().prefetchAt(name.offset + size);
        }
    }

    void findNames() {
        for (Fetched& path : paths_) {
            path.file = path.isInRun
                            ? FileName{path.run.folder, set_.arena().nameAt(set_.arena().nameOffset(
                                                            path.run, path.indexInRun()))}
                            : set_.fileNameOf(path.entry, path.index);
            path.above = path.file.folder;
        }
    }

    /// Those further up are shared by so many that they are there as a rule.
    void askForFoldersAbove() {
        constexpr int kLevels = 3;
        for (int level = 0; level < kLevels; ++level) {
            for (Fetched& path : paths_) {
                if (path.above == PathArena::kRoot) continue;
                set_.arena().prefetchName(path.above);
                path.above = set_.arena().parentOf(path.above);
                set_.arena().prefetchFolder(path.above);
            }
        }
    }

    const HuffmanPathTree& set_;
    std::array<Fetched, kFetchedTogether> all_;
    std::span<Fetched> paths_;
};

void HuffmanPathTree::forEachText(
    std::span<const std::size_t> numbers, std::string_view separator,
    const std::function<void(std::size_t number, std::string_view text)>& visit) const {
    FetchedTogether fetched(*this);
    FileTexts texts(*this, separator);
    while (!numbers.empty()) {
        const auto some = numbers.first(std::min(numbers.size(), kFetchedTogether));
        fetched.find(some);
        for (std::size_t i = 0; i < some.size(); ++i) visit(some[i], texts.textOf(fetched[i]));
        numbers = numbers.subspan(some.size());
    }
}

}  // namespace compressedpaths
