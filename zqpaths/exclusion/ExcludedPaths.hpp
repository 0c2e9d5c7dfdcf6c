#pragma once
// ExcludedPaths apply exclusion rules to paths that come from elsewhere than a walk, such as a
// list:
//
//     ExcludedPaths excluded({"build/"});
//     excluded.contain("/src/build/x.o");  // true: it is in a directory that is left out
//
// Separators at the front of a path, more than one in a row and names "." do not count; one at the
// end says that it is a directory.
//
// Threads: an object belongs to one thread at a time.

#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/Export.hpp"
#include "zqpaths/exclusion/ExclusionRules.hpp"

namespace zqpaths {

class ZQPATHS_EXPORT ExcludedPaths {
public:
    /// Throws as ExclusionRules.
    explicit ExcludedPaths(const std::vector<std::string>& patterns) : rules_(patterns) {}

    /// Whether a path is left out, or a directory that it is in. O(bytes) for one in the same
    /// directory as the path before, else O(bytes * names). Throws as ExclusionRules.
    bool contain(std::string_view path);

private:
    void enter(std::string_view folder);
    bool leavesOut(std::string_view name, EntryKind kind);

    ExclusionRules rules_;
    std::string folder_;      // of the last path, as it stands there
    std::string names_;       // its names, each with one separator
    bool isLeftOut_ = false;  // the folder is
};

}  // namespace zqpaths
