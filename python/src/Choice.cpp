#include "python/src/Choice.hpp"

namespace zqpaths::python {
namespace {

/// By bisection, where numbers ascend with the places.
template <class Paths>
std::optional<std::uint64_t> placeIn(const Paths& paths, std::uint64_t number) noexcept {
    std::uint64_t first = 0;
    for (std::uint64_t count = paths.size(); count > 0;) {
        const std::uint64_t half = count / 2;
        if (paths[first + half] < number) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    if (first < paths.size() && paths[first] == number) return first;
    return std::nullopt;
}

/// One after the other: a shuffle is computed from place to number only.
std::optional<std::uint64_t> placeIn(const ShuffledPaths& paths, std::uint64_t number) noexcept {
    for (std::uint64_t place = 0; place < paths.size(); ++place)
        if (paths[place] == number) return place;
    return std::nullopt;
}

}  // namespace

std::optional<std::uint64_t> placeOf(const Choice& choice, std::uint64_t number) {
    return std::visit([number](const auto& paths) { return placeIn(paths, number); }, choice);
}

}  // namespace zqpaths::python
