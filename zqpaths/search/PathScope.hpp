#pragma once
// PathScope is a part of all paths: those in a folder, down to a depth.
//
//     PathScope scope("/usr/lib", 1);
//     scope.contains("/usr/lib/libz.so");      // true
//     scope.contains("/usr/library/x");        // false: names count as a whole
//     scope.contains("/usr/lib/python3/x.py"); // false: two names below the folder
//
// Threads: a scope never changes; any number of threads may use it.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "zqpaths/Export.hpp"

namespace zqpaths {

class ZQPATHS_EXPORT PathScope {
public:
    /// An empty folder holds all paths, "/" those that begin with a separator. How many separators
    /// stand together, or at the end, does not matter. The folder itself is in it, at depth 0.
    /// Without `depth` all depths are.
    explicit PathScope(std::string folder, std::optional<std::uint64_t> depth = std::nullopt)
        : folder_(std::move(folder)), depth_(depth) {}

    /// O(bytes).
    bool contains(std::string_view path) const;

private:
    std::string folder_;
    std::optional<std::uint64_t> depth_;
};

}  // namespace zqpaths
