#include "tools/zqpaths/sets/SeenPaths.hpp"

#include <random>
#include <utility>

namespace zqpaths::program {
namespace {

constexpr std::size_t kFirstSlotCount = 1024;

bool isEmpty(const XXH128_hash_t& hash) {
    return hash.low64 == 0 && hash.high64 == 0;
}

}  // namespace

std::uint64_t newHashSeed() {
    std::random_device device;
    return std::uint64_t{device()} << 32 | device();
}

SeenPaths::SeenPaths() : seed_(newHashSeed()), slots_(kFirstSlotCount) {}

bool SeenPaths::insert(std::string_view path) {
    XXH128_hash_t hash = XXH3_128bits_withSeed(path.data(), path.size(), seed_);
    if (isEmpty(hash)) hash.low64 = 1;
    const std::size_t slot = findSlot(hash);
    if (!isEmpty(slots_[slot])) return false;
    slots_[slot] = hash;
    if (++count_ > slots_.size() / 4 * 3) grow();
    return true;
}

std::size_t SeenPaths::findSlot(const XXH128_hash_t& hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hash.low64 & mask;
    while (!isEmpty(slots_[slot]) && !XXH128_isEqual(slots_[slot], hash)) slot = (slot + 1) & mask;
    return slot;
}

void SeenPaths::grow() {
    std::vector<XXH128_hash_t> before(2 * slots_.size());
    before.swap(slots_);
    for (const XXH128_hash_t& hash : before)
        if (!isEmpty(hash)) slots_[findSlot(hash)] = hash;
}

}  // namespace zqpaths::program
