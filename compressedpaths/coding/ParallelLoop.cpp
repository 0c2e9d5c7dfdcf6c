#include "compressedpaths/coding/ParallelLoop.hpp"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>

namespace compressedpaths {

void runParts(std::size_t count, LoopWork work) {
    using Range = tbb::blocked_range<std::size_t>;
    tbb::task_group_context context;
    tbb::parallel_for(
        Range(0, count, 1),
        [&work](const Range& range) { work.run(work.work, range.begin(), range.end()); },
        tbb::auto_partitioner(), context);
}

}  // namespace compressedpaths
