#pragma once
// How many objects of the host are alive, for tests that want as many freed as made:
//
//     const LiveObjects before = liveObjects();
//     {
//         ...
//     }
//     EXPECT_EQ(liveObjects(), before);
//
// Threads: safe for concurrent use.

#include <cstddef>

#include "host/Export.hpp"

namespace foundation::core {

struct LiveObjects {
    std::size_t arrays = 0;
    std::size_t interfaces = 0;  // objects of classes
    std::size_t instances = 0;   // what the classes keep for them
    std::size_t classInfos = 0;
    std::size_t methodInfos = 0;
    std::size_t methodSignatures = 0;

    bool operator==(const LiveObjects&) const = default;
};

KORVEX_API LiveObjects liveObjects() noexcept;

/// Counts a change of one kind, such as `&LiveObjects::arrays`.
void countMade(std::size_t LiveObjects::*kind) noexcept;
void countFreed(std::size_t LiveObjects::*kind) noexcept;

}  // namespace foundation::core
