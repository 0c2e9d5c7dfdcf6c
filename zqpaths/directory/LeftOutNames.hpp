#pragma once
// LeftOutNames counts the names that a source of paths has and does not give, by the reason. What
// is in a directory that is left out is not looked at and not counted.

#include <cstdint>

namespace zqpaths {

struct LeftOutNames {
    std::uint64_t hidden = 0;        // they begin with a dot
    std::uint64_t excluded = 0;      // by exclusion rules
    std::uint64_t ofOtherTypes = 0;  // than those that are taken
    std::uint64_t tooDeep = 0;       // directories that a walk does not enter, paths of a list
    std::uint64_t onOtherFileSystems = 0;  // directories

    LeftOutNames& operator+=(const LeftOutNames& other) noexcept {
        hidden += other.hidden;
        excluded += other.excluded;
        ofOtherTypes += other.ofOtherTypes;
        tooDeep += other.tooDeep;
        onOtherFileSystems += other.onOtherFileSystems;
        return *this;
    }
    bool operator==(const LeftOutNames&) const = default;
};

}  // namespace zqpaths
