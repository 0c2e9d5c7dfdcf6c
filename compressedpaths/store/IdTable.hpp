#pragma once
// IdTable finds numbers by the hash of what they stand for: open addressing with linear probing in
// a flat array, four bytes a slot. The table knows neither keys nor hashes; who asks says both.
//
//     IdTable table;
//     table.reserveForOne(hashOfId);                   // the one step that can throw
//     table.insert(hashOfId(7), 7);
//     table.find(hash, [&](std::uint32_t id) { return nameOf(id) == name; });
//
// Threads: as a std::vector.

#include <cstddef>
#include <cstdint>

#include "compressedpaths/store/FlatArray.hpp"

namespace compressedpaths {

class IdTable {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    IdTable() = default;

    /// A table on slots from outside, a power of two of them, or none.
    IdTable(FlatArray<std::uint32_t> slots, std::size_t count) noexcept
        : slots_(std::move(slots)), count_(count) {}

    const FlatArray<std::uint32_t>& slots() const noexcept { return slots_; }
    std::size_t count() const noexcept { return count_; }

    /// The first number in the probe sequence that `isEqual`, or kNone. O(1), expected; never more
    /// than one round, whatever the slots hold.
    template <class IsEqual>
    std::uint32_t find(std::uint64_t hash, IsEqual isEqual) const {
        if (slots_.isEmpty()) return kNone;
        std::size_t slot = hash & mask();
        for (std::size_t left = slots_.size(); left > 0; --left, slot = (slot + 1) & mask()) {
            const std::uint32_t id = slots_[slot];
            if (id == kNone || isEqual(id)) return id;
        }
        return kNone;
    }

    /// Makes room for one number more. `hashOf(id)` is the hash of a number in the table. Throws
    /// only std::bad_alloc; nothing has changed then. Amortised O(1).
    template <class HashOf>
    void reserveForOne(HashOf hashOf) {
        slots_.own();
        if ((count_ + 1) * 4 <= slots_.size() * 3) return;
        IdTable larger;
        larger.slots_.assign(slots_.isEmpty() ? 16 : slots_.size() * 2, kNone);
        for (const std::uint32_t id : slots_.values())
            if (id != kNone) larger.insert(hashOf(id), id);
        *this = std::move(larger);
    }

    /// Adds a number that is not there. Requires room.
    void insert(std::uint64_t hash, std::uint32_t id) noexcept {
        std::size_t slot = hash & mask();
        while (slots_[slot] != kNone) slot = (slot + 1) & mask();
        slots_.at(slot) = id;
        ++count_;
    }

    /// Puts another number of the same hash in the place of one that is there.
    void replace(std::uint64_t hash, std::uint32_t id, std::uint32_t newId) noexcept {
        slots_.at(slotOf(hash, id)) = newId;
    }

    /// Removes a number that is there. Those that it had pushed on move up, so that each is still
    /// found from where its hash says. O(1), expected.
    template <class HashOf>
    void erase(std::uint32_t id, HashOf hashOf) noexcept {
        std::size_t hole = slotOf(hashOf(id), id);
        for (std::size_t slot = (hole + 1) & mask(); slots_[slot] != kNone;
             slot = (slot + 1) & mask()) {
            const std::size_t wanted = hashOf(slots_[slot]) & mask();
            if (((slot - wanted) & mask()) < ((slot - hole) & mask())) continue;
            slots_.at(hole) = slots_[slot];
            hole = slot;
        }
        slots_.at(hole) = kNone;
        --count_;
    }

private:
    std::size_t mask() const noexcept { return slots_.size() - 1; }

    std::size_t slotOf(std::uint64_t hash, std::uint32_t id) const noexcept {
        std::size_t slot = hash & mask();
        while (slots_[slot] != id) slot = (slot + 1) & mask();
        return slot;
    }

    FlatArray<std::uint32_t> slots_;  // a power of two, at most three quarters of them taken
    std::size_t count_ = 0;
};

}  // namespace compressedpaths
