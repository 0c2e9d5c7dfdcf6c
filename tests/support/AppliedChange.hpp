#pragma once
// What an update tells, made in the set:
//
//     SetUpdate update(set, roots,
//                      {.onChange = [&](PathChange change, std::uint64_t number, std::string_view
//                      path) {
//                          applyChange(change, number, path, writer);
//                      }, ...});

#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/update/SetUpdate.hpp"

namespace zqpaths {

/// Throws std::logic_error if a path that is added gets another number than was told.
inline void applyChange(PathChange change, std::uint64_t number, std::string_view path,
                        PathSetWriter& writer) {
    switch (change) {
        case PathChange::kAdded:
            writer.add(path);
            if (writer.size() != number) throw std::logic_error("a path has another number");
            break;
        case PathChange::kGone:
            writer.markGone(number);
            break;
        case PathChange::kBack:
            writer.markPresent(number);
    }
}

}  // namespace zqpaths
