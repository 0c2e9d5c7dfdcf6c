#include "tools/zqpaths/PathScan.hpp"

#include <algorithm>

namespace zqpaths {
void scanPaths(PathSet& set, const NumberedPathVisitor& visit,
               const std::function<bool()>& isDone) {
    for (std::uint64_t begin = 1; begin <= set.size() && !isDone(); begin += PathSet::kPathsACall)
        set.get(begin, std::min(begin + PathSet::kPathsACall - 1, set.size()), visit);
}

}  // namespace zqpaths
