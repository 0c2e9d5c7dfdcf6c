#pragma once
// ExtensionCounts are how many paths of a set have which extension, for those that most have, and
// without paths that are gone:
//
//     const ExtensionCounts counts = countExtensions(set, 20, step);
//     counts.most[0].name;   // "html"
//     counts.most[0].count;  // 1,203
//     counts.others;         // paths with any other extension
//
// Threads: free functions without state.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/PathSet.hpp"

namespace zqpaths::program {

struct ExtensionCounts {
    struct Extension {
        std::string name;
        std::uint64_t count;
    };

    std::vector<Extension> most;  // most paths first, of equal ones by name
    std::uint64_t others = 0;     // paths with an extension that is not among them
    std::uint64_t none = 0;       // paths without one
};

/// Calls `step` for each path that is read, at most twice. Throws Error as PathSet::forEach.
/// O(bytes). Memory for some ten thousand extensions, however many there are.
ExtensionCounts countExtensions(const PathSet& set, std::size_t limit,
                                const std::function<void()>& step);

}  // namespace zqpaths::program
