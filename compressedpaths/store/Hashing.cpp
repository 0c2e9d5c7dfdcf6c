#include "compressedpaths/store/Hashing.hpp"

#include <sys/random.h>

#include <chrono>

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace compressedpaths {

std::uint64_t processSeed() noexcept {
    static const std::uint64_t seed = [] {
        std::uint64_t drawn = 0;
        // Early in a system's start there may be no random bytes yet; then the clock has to do.
        if (getrandom(&drawn, sizeof drawn, GRND_NONBLOCK) != sizeof drawn)
            drawn = static_cast<std::uint64_t>(
                std::chrono::steady_clock::now().time_since_epoch().count());
        return drawn;
    }();
    return seed;
}

std::uint64_t hashOf(const void* bytes, std::size_t size, std::uint64_t seed) noexcept {
    return XXH3_64bits_withSeed(bytes, size, seed);
}

}  // namespace compressedpaths
