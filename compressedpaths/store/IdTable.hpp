#pragma once
// IdTable finds numbers by the hash of what they stand for: open addressing with linear probing in
// a flat array. The table knows neither keys nor hashes; who asks says both. Beside each number
// stands a tag, seven bits of its hash, so that a number met on the way to another is passed
// without a look at what it stands for, which is a miss of the cache:
//
//     slots     7  -  9  4  -          five bytes a slot, at most three quarters of them taken
//     tags     a1  0 c3 88  0          0 where no number stands
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

    /// A table on slots from outside, a power of two of them, or none. It has no tags, and is only
    /// looked into.
    IdTable(FlatArray<std::uint32_t> slots, std::size_t count) noexcept
        : slots_(std::move(slots)), count_(count) {}

    const FlatArray<std::uint32_t>& slots() const noexcept { return slots_; }
    std::size_t count() const noexcept { return count_; }

    /// The first number in the probe sequence that `isEqual`, or kNone. O(1), expected; never more
    /// than one round, whatever the slots hold.
    template <class IsEqual>
    std::uint32_t find(std::uint64_t hash, IsEqual isEqual) const {
        if (slots_.isEmpty()) return kNone;
        const bool hasTags = !tags_.isEmpty();
        std::size_t slot = hash & mask();
        for (std::size_t left = slots_.size(); left > 0; --left, slot = (slot + 1) & mask()) {
            if (hasTags && tags_[slot] != tagOf(hash)) {
                if (tags_[slot] == kNoTag) return kNone;
                continue;
            }
            const std::uint32_t id = slots_[slot];
            if (id == kNone || isEqual(id)) return id;
        }
        return kNone;
    }

    /// Makes room for one number more. `hashOf(id)` is the hash of a number in the table. Throws
    /// only std::bad_alloc; nothing has changed then. Amortised O(1).
    template <class HashOf>
    void reserveForOne(HashOf hashOf) {
        if ((count_ + 1) * 4 <= tags_.size() * 3) return;
        IdTable larger;
        const std::size_t size = slots_.isEmpty() ? 16 : slots_.size() * 2;
        larger.slots_.assign(size, kNone);
        larger.tags_.assign(size, kNoTag);
        for (const std::uint32_t id : slots_.values())
            if (id != kNone) larger.insert(hashOf(id), id);
        *this = std::move(larger);
    }

    /// Adds a number that is not there. Requires room.
    void insert(std::uint64_t hash, std::uint32_t id) noexcept {
        std::size_t slot = hash & mask();
        while (tags_[slot] != kNoTag) slot = (slot + 1) & mask();
        put(slot, id, tagOf(hash));
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
        for (std::size_t slot = (hole + 1) & mask(); tags_[slot] != kNoTag;
             slot = (slot + 1) & mask()) {
            const std::size_t wanted = hashOf(slots_[slot]) & mask();
            if (((slot - wanted) & mask()) < ((slot - hole) & mask())) continue;
            put(hole, slots_[slot], tags_[slot]);
            hole = slot;
        }
        put(hole, kNone, kNoTag);
        --count_;
    }

private:
    static constexpr std::uint8_t kNoTag = 0;

    /// Of the upper bits, since the lower ones choose the slot.
    static std::uint8_t tagOf(std::uint64_t hash) noexcept {
        return static_cast<std::uint8_t>(hash >> 57 | 0x80);
    }

    std::size_t mask() const noexcept { return slots_.size() - 1; }

    void put(std::size_t slot, std::uint32_t id, std::uint8_t tag) noexcept {
        slots_.at(slot) = id;
        tags_.at(slot) = tag;
    }

    std::size_t slotOf(std::uint64_t hash, std::uint32_t id) const noexcept {
        std::size_t slot = hash & mask();
        while (slots_[slot] != id) slot = (slot + 1) & mask();
        return slot;
    }

    FlatArray<std::uint32_t> slots_;  // a power of two
    FlatArray<std::uint8_t> tags_;    // one a slot; none where the slots came from outside
    std::size_t count_ = 0;
};

}  // namespace compressedpaths
