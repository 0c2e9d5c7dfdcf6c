#include "zqpaths/choosing/PathParts.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "compressedpaths/store/Hashing.hpp"
#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

/// A place on the line from 0 to 1, in units of 2^-64; the very end is one of them below it.
std::uint64_t inUnits(double place) noexcept {
    constexpr int kBits = std::numeric_limits<std::uint64_t>::digits;
    const double units = std::ldexp(place, kBits);  // exact
    if (units >= std::ldexp(1.0, kBits)) return std::numeric_limits<std::uint64_t>::max();
    return static_cast<std::uint64_t>(units);
}

[[noreturn]] void refuse(const std::string& reason) {
    throw Error(ErrorKind::kWrongUse, "fractions", reason);
}

}  // namespace

PathParts::PathParts(std::span<const double> fractions, std::uint64_t seed) : seed_(seed) {
    if (fractions.empty()) refuse("there is none");
    double end = 0;
    for (const double fraction : fractions) {
        if (!(fraction > 0)) refuse("each is above 0");  // nor is it NaN
        ends_.push_back(inUnits(end += fraction));
    }
    if (!(std::abs(end - 1) <= kTolerance))
        refuse("they add up to " + std::to_string(end) + ", not to 1");
    ends_.pop_back();
}

std::size_t PathParts::partOf(std::string_view path) const noexcept {
    const std::uint64_t place = compressedpaths::hashOf(path.data(), path.size(), seed_);
    const auto partsBefore = std::ranges::upper_bound(ends_, place) - ends_.begin();
    return static_cast<std::size_t>(partsBefore) + 1;
}

}  // namespace zqpaths
