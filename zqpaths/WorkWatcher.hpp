#pragma once
// WorkWatcher is a function that long work of the library tells how far it has come:
//
//     std::atomic<std::uint64_t> pathCount{0};
//     set.verify([&](zqpaths::WorkStep step, std::uint64_t items) {
//         if (step == zqpaths::WorkStep::kReading) pathCount += items;
//     });
//
// Threads: it is called on any thread of the library, on several at the same time, some hundred
// times a second. It must be quick and must not throw.

#include <cstdint>
#include <functional>

namespace zqpaths {

enum class WorkStep {
    kReading,  // items are paths
    kSumming,  // bytes of the file, those that are copied among them
    kCoding,   // paths
    kPacking,  // begins; nothing is counted
    kSyncing,  // begins; nothing is counted
};

/// Is told that so many more items of a step are done. An empty one is told nothing.
using WorkWatcher = std::function<void(WorkStep step, std::uint64_t items)>;

}  // namespace zqpaths
