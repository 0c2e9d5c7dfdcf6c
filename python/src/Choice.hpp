#pragma once
// Choice is which paths of a set a sequence has, and in which order.
//
//     const Choice choice = ListedPaths({3, 17});
//     numberAt(choice, 1);   // 18: numbers of the library begin at 1, positions at 0
//     placeOf(choice, 18);   // 1
//
// Threads: a choice never changes; any number of threads may read it.

#include <algorithm>
#include <cstdint>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "zqpaths/choosing/Share.hpp"

namespace zqpaths::python {

/// All paths of a set.
class AllPaths {
public:
    explicit AllPaths(std::uint64_t size) noexcept : size_(size) {}

    std::uint64_t size() const noexcept { return size_; }
    std::uint64_t operator[](std::uint64_t place) const noexcept { return place + 1; }

private:
    std::uint64_t size_;
};

/// Paths at positions that ascend.
class ListedPaths {
public:
    explicit ListedPaths(std::vector<std::int64_t> positions) : positions_(std::move(positions)) {}

    const std::vector<std::int64_t>& positions() const noexcept { return positions_; }
    std::uint64_t size() const noexcept { return positions_.size(); }
    std::uint64_t operator[](std::uint64_t place) const noexcept {
        return static_cast<std::uint64_t>(positions_[place]) + 1;
    }

private:
    std::vector<std::int64_t> positions_;
};

/// One of several readers.
struct Reader {
    std::uint64_t rank;
    std::uint64_t of;
};

/// What a reader reads, in the order of the set.
struct DealtPaths : Share {
    DealtPaths(std::uint64_t pathCount, Reader one)
        : Share(pathCount, one.rank, one.of), reader(one) {}

    Reader reader;
};

/// What a reader reads of a shuffle.
struct ShuffledPaths : ShuffledShare {
    ShuffledPaths(std::uint64_t pathCount, Reader one, std::uint64_t seedOfAll,
                  std::uint64_t number)
        : ShuffledShare(pathCount, one.rank, one.of, seedOfAll, number),
          reader(one),
          seed(seedOfAll),
          epoch(number) {}

    Reader reader;
    std::uint64_t seed;
    std::uint64_t epoch;
};

using Choice = std::variant<AllPaths, ListedPaths, DealtPaths, ShuffledPaths>;

inline std::uint64_t sizeOf(const Choice& choice) {
    return std::visit([](const auto& paths) { return paths.size(); }, choice);
}

inline std::uint64_t numberAt(const Choice& choice, std::uint64_t place) {
    return std::visit([place](const auto& paths) { return paths[place]; }, choice);
}

/// Whether the numbers ascend with the places.
inline bool isAscending(const Choice& choice) noexcept {
    return !std::holds_alternative<ShuffledPaths>(choice);
}

/// The place of a number, if the choice has it. O(log size); O(size) for a shuffle.
std::optional<std::uint64_t> placeOf(const Choice& choice, std::uint64_t number);

}  // namespace zqpaths::python
