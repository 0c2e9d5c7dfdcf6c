#include "tools/zqpaths/PathScan.hpp"

#include <algorithm>

namespace zqpaths {
namespace {

constexpr std::uint64_t kPathsAStep = 10'000;

}  // namespace

void scanPaths(PathSet& set, const NumberedPathVisitor& visit,
               const std::function<bool()>& isDone) {
    for (std::uint64_t begin = 1; begin <= set.size() && !isDone(); begin += kPathsAStep)
        set.get(begin, std::min(begin + kPathsAStep - 1, set.size()), visit);
}

}  // namespace zqpaths
