#include "tools/zqpaths-mpi/paths/DealtHashes.hpp"

#include <algorithm>

namespace zqpaths::program::mpi {
namespace {

constexpr std::size_t kFirstSlotCount = 1024;
constexpr std::uint64_t kLargestNumber = (std::uint64_t{1} << 62) - 1;

/// The bit of a side.
std::uint64_t bitOf(Side side) noexcept {
    return side == Side::kFirst ? 1 : 2;
}

}  // namespace

DealtHashes::DealtHashes() : slots_(kFirstSlotCount) {}

void DealtHashes::add(const XXH128_hash_t& hash, Side side, std::uint64_t number) {
    const std::uint64_t bit = bitOf(side) & 3;
    Slot& slot = slots_[findSlot(hash)];
    const bool isNew = slot.sides == 0;
    if (isNew) slot.hash = hash;
    if (isNew || (slot.sides == bit && number < slot.number)) slot.number = number & kLargestNumber;
    slot.sides = (slot.sides | bit) & 3;
    if (isNew && ++count_ > slots_.size() / 4 * 3) grow();
}

std::vector<std::uint64_t> DealtHashes::numbersOnlyIn(Side side) const {
    std::vector<std::uint64_t> numbers;
    for (const Slot& slot : slots_)
        if (slot.sides == bitOf(side)) numbers.push_back(slot.number);
    std::ranges::sort(numbers);
    return numbers;
}

std::size_t DealtHashes::findSlot(const XXH128_hash_t& hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hash.low64 & mask;
    while (slots_[slot].sides != 0 && !XXH128_isEqual(slots_[slot].hash, hash))
        slot = (slot + 1) & mask;
    return slot;
}

void DealtHashes::grow() {
    std::vector<Slot> before(2 * slots_.size());
    before.swap(slots_);
    for (const Slot& slot : before)
        if (slot.sides != 0) slots_[findSlot(slot.hash)] = slot;
}

}  // namespace zqpaths::program::mpi
