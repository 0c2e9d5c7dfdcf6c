#pragma once
// Segment is one path set of a file, opened when it is first needed: an image on the mapped bytes,
// a packed one inflated into memory.
//
//     const Segment segment(file, file->segments()[0], 1);
//     segment.forEachPath({1, 9}, [&](std::size_t position, std::string_view path) { ... });
//
// Threads: any number of threads may read it; one of them opens it while the others wait.

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/store/Lazy.hpp"
#include "zqpaths/WorkWatcher.hpp"
#include "zqpaths/file/SetFile.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {

class Segment {
public:
    /// What the core joins the components of a path with.
    static constexpr std::string_view kSeparatorText{&kSeparator, 1};

    Segment(std::shared_ptr<const SetFile> file, const SegmentEntry& entry,
            std::uint64_t firstNumber);

    std::uint64_t firstNumber() const noexcept { return firstNumber_; }
    std::uint64_t lastNumber() const noexcept { return firstNumber_ + entry_.pathCount - 1; }
    const SegmentEntry& entry() const noexcept { return entry_; }

    /// The number of a path of this segment as its own set counts, and back.
    std::size_t positionOf(std::uint64_t number) const noexcept {
        return static_cast<std::size_t>(number - firstNumber_ + 1);
    }
    std::uint64_t numberOf(std::size_t position) const noexcept {
        return firstNumber_ + position - 1;
    }

    /// Throws Error kDamaged. O(1) for an image, O(paths) for a packed one the first time.
    const compressedpaths::HuffmanPathTree& set() const;

    /// A set of its own on the same bytes, which moves through a walk, or is there for once only.
    /// Throws Error kDamaged. As set() the first time.
    std::unique_ptr<compressedpaths::HuffmanPathTree> openAnew() const;

    /// Appends the path at a position, which there is. Throws Error kDamaged; `text` is then as it
    /// was. O(log entries + bytes).
    void appendPath(std::size_t position, std::string& text) const;

    using Positions = compressedpaths::HuffmanPathTree::NumberRange;

    /// Calls `visit(position, path)` from one position to another, which there are, until it
    /// returns false, if it returns bool. Returns the first position that was not visited. `visit`
    /// is of our own and throws std::bad_alloc only. Throws Error kDamaged. O(log entries + bytes).
    template <class Visit>
    std::size_t forEachPath(Positions positions, Visit visit) const {
        return positions.first + read([&](const compressedpaths::HuffmanPathTree& set) {
                   return forEachPathOf(set, positions, visit);
               });
    }

    /// The same for any positions, which there are, each once, in the order given; soonest if they
    /// ascend. Returns how many were visited. O(log entries + bytes) each.
    template <class Visit>
    std::size_t forEachPath(std::span<const std::size_t> positions, Visit visit) const {
        return read([&](const compressedpaths::HuffmanPathTree& set) {
            return visitUntilFalse(
                visit, [&](const auto& take) { set.forEachText(positions, kSeparatorText, take); });
        });
    }

    /// Throws Error kDamaged unless all its offsets and sums hold and it has the paths that the
    /// directory says it has. `watch` is told of paths that have been read. O(bytes).
    void verify(const WorkWatcher& watch = {}) const;

    /// What `work(set())` gives. What it throws, lack of memory aside, means that the set is
    /// damaged and becomes an Error that says so; so it must not call what belongs to others.
    template <class Work>
    decltype(auto) read(Work work) const {
        return translated([&]() -> decltype(auto) { return work(set()); });
    }

    /// The same for work without a set, as on one that openAnew has given.
    template <class Work>
    decltype(auto) translated(Work work) const {
        try {
            return work();
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const Error&) {
            throw;
        } catch (const std::exception& damage) {
            refuse(damage.what());
        }
    }

    /// Throws Error kDamaged with the place of this segment and the reason.
    [[noreturn]] void refuse(std::string_view reason) const;

    /// How much text is left of what the directory says that the segment has. Few bytes can hold
    /// long folders, and names that many paths have: who reads them can ask how much text that is,
    /// and work that goes through the paths, each once, gets no more.
    ///
    /// Threads: any number of threads may take.
    class TextLeft {
    public:
        explicit TextLeft(const Segment& segment) noexcept
            : segment_(segment), left_(segment.entry().textSize) {}

        /// Takes the text of a path. Throws Error kDamaged if there is none left.
        void take(std::string_view path) {
            const std::uint64_t size = path.size() + 1;
            if (left_.fetch_sub(size, std::memory_order_relaxed) < size) segment_.refuseText();
        }

    private:
        const Segment& segment_;
        std::atomic<std::uint64_t> left_;
    };

private:
    /// Ends a call of the core in its midst, which few do.
    struct Stop {};

    /// Calls `go(take)`, where `take(position, text)` gives the path to `visit`. Returns how many
    /// were visited.
    template <class Visit, class Go>
    std::size_t visitUntilFalse(Visit& visit, Go go) const {
        std::size_t count = 0;
        TextLeft left(*this);
        try {
            go([&](std::size_t position, std::string_view text) {
                const std::string_view path = pathOfComponents(text);
                left.take(path);
                ++count;
                if constexpr (std::is_void_v<decltype(visit(position, path))>)
                    visit(position, path);
                else if (!visit(position, path))
                    throw Stop();
            });
        } catch (const Stop&) {
        }
        return count;
    }

    template <class Visit>
    std::size_t forEachPathOf(const compressedpaths::HuffmanPathTree& set, Positions positions,
                              Visit& visit) const {
        bool isAtEnd = false;
        const std::size_t count = visitUntilFalse(visit, [&](const auto& take) {
            set.forEachText(positions.first, positions.last, kSeparatorText, take);
            isAtEnd = true;
        });
        if (isAtEnd && count != positions.last - positions.first + 1)
            throw compressedpaths::InvalidPathNumberException();  // there are fewer entries
        return count;
    }

    [[noreturn]] void refuseText() const;
    std::unique_ptr<compressedpaths::HuffmanPathTree> openImage() const;
    std::unique_ptr<compressedpaths::HuffmanPathTree> inflate() const;
    void requireCount(const compressedpaths::HuffmanPathTree& set) const;
    void requireShortWords(const compressedpaths::HuffmanPathTree& set) const;

    std::shared_ptr<const SetFile> file_;
    SegmentEntry entry_;
    std::uint64_t firstNumber_;
    /// The set, or why there is none, so that what cannot be opened is not tried each time.
    struct Opened {
        std::unique_ptr<compressedpaths::HuffmanPathTree> set;
        std::optional<Error> damage;
    };
    compressedpaths::Lazy<Opened> opened_;
};

}  // namespace zqpaths
