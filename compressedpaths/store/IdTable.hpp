#pragma once
// IdTable finds numbers by the hash of what they stand for: open addressing with linear probing in
// a flat array, four bytes a slot. The table knows neither keys nor hashes; who asks says both.
//
//     IdTable table;
//     table.reserveForOne(7, hashOfId);                // the one step that can throw
//     table.insert(hashOfId(7), 7);
//     table.find(hash, [&](std::uint32_t id) { return nameOf(id) == name; });
//
// The bits of a slot that its number does not need can hold bits of its hash, a tag, so that a
// number met on the way to another is passed without a look at what it stands for, which is a miss
// of the cache. With numbers below 2^20:
//
//     bit 31     20 19              0
//       [ tag      ][ number         ]     all ones: an empty slot
//
// Threads: as a std::vector.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "compressedpaths/store/FlatArray.hpp"

namespace compressedpaths {

class IdTable {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    enum class Tags { kNone, kInSlots };

    /// Slots without tags are the numbers themselves.
    explicit IdTable(Tags tags = Tags::kNone) noexcept : idMask_(tags == Tags::kNone ? kNone : 0) {}

    /// A table without tags, on slots from outside: a power of two of them, or none.
    IdTable(FlatArray<std::uint32_t> slots, std::size_t count) noexcept
        : slots_(std::move(slots)), count_(count) {}

    /// The slots of a table without tags.
    const FlatArray<std::uint32_t>& slots() const noexcept { return slots_; }
    std::size_t count() const noexcept { return count_; }

    /// The first number in the probe sequence that `isEqual`, or kNone. O(1), expected; never more
    /// than one round, whatever the slots hold.
    template <class IsEqual>
    std::uint32_t find(std::uint64_t hash, IsEqual isEqual) const {
        return findWithin(slots_.size(), hash, isEqual).value_or(kNone);
    }

    /// The same, or nothing if it is not known after so many steps.
    template <class IsEqual>
    std::optional<std::uint32_t> findWithin(std::size_t steps, std::uint64_t hash,
                                            IsEqual isEqual) const {
        if (slots_.isEmpty()) return kNone;
        const std::uint32_t tag = tagOf(hash);
        std::size_t slot = hash & mask();
        for (; steps > 0; --steps, slot = (slot + 1) & mask()) {
            const std::uint32_t word = slots_[slot];
            if (word == kNone) return kNone;
            if ((word & ~idMask_) == tag && isEqual(word & idMask_)) return word & idMask_;
        }
        return std::nullopt;
    }

    /// Makes room for one number, `newId`. `hashOf(id)` is the hash of a number in the table.
    /// Throws only std::bad_alloc; nothing has changed then. Amortised O(1).
    template <class HashOf>
    void reserveForOne(std::uint32_t newId, HashOf hashOf) {
        slots_.own();
        const bool isFull = (count_ + 1) * 4 > slots_.size() * 3;
        if (!isFull && newId < idMask_) return;
        IdTable larger;
        const std::size_t size = !isFull            ? slots_.size()
                                 : slots_.isEmpty() ? 16
                                                    : 2 * slots_.size();
        if (idMask_ != kNone) {
            const auto ids = std::max<std::uint64_t>({size, newId + std::uint64_t{2}, idMask_});
            larger.idMask_ = static_cast<std::uint32_t>(std::bit_ceil(ids) - 1);
        }
        larger.slots_.assign(size, kNone);
        for (const std::uint32_t word : slots_.values())
            if (word != kNone) larger.insert(hashOf(word & idMask_), word & idMask_);
        *this = std::move(larger);
    }

    /// Adds a number that is not there. Requires room.
    void insert(std::uint64_t hash, std::uint32_t id) noexcept {
        std::size_t slot = hash & mask();
        while (slots_[slot] != kNone) slot = (slot + 1) & mask();
        slots_.at(slot) = tagOf(hash) | id;
        ++count_;
    }

    /// Puts another number of the same hash, for which there is room, in the place of one that is
    /// there.
    void replace(std::uint64_t hash, std::uint32_t id, std::uint32_t newId) noexcept {
        slots_.at(slotOf(hash, id)) = tagOf(hash) | newId;
    }

    /// Removes a number that is there. Those that it had pushed on move up, so that each is still
    /// found from where its hash says. O(1), expected.
    template <class HashOf>
    void erase(std::uint32_t id, HashOf hashOf) noexcept {
        std::size_t hole = slotOf(hashOf(id), id);
        for (std::size_t slot = (hole + 1) & mask(); slots_[slot] != kNone;
             slot = (slot + 1) & mask()) {
            const std::size_t wanted = hashOf(slots_[slot] & idMask_) & mask();
            if (((slot - wanted) & mask()) < ((slot - hole) & mask())) continue;
            slots_.at(hole) = slots_[slot];
            hole = slot;
        }
        slots_.at(hole) = kNone;
        --count_;
    }

private:
    std::size_t mask() const noexcept { return slots_.size() - 1; }

    /// Of the upper half of the hash, since the lower one chooses the slot.
    std::uint32_t tagOf(std::uint64_t hash) const noexcept {
        return static_cast<std::uint32_t>(hash >> 32) & ~idMask_;
    }

    std::size_t slotOf(std::uint64_t hash, std::uint32_t id) const noexcept {
        std::size_t slot = hash & mask();
        while (slots_[slot] != (tagOf(hash) | id)) slot = (slot + 1) & mask();
        return slot;
    }

    FlatArray<std::uint32_t> slots_;  // a power of two, at most three quarters of them taken
    std::size_t count_ = 0;
    std::uint32_t idMask_ = kNone;  // the bits of a number, which is below it; all without tags
};

}  // namespace compressedpaths
