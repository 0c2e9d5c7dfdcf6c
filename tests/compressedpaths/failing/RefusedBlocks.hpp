#pragma once
// An operation while memory runs out, at each of the blocks that it asks for: what it acts on is
// then as it was, and the same operation succeeds afterwards and gives what it should.
//
//     forEachBlock([] { return std::make_unique<Subject>(); },
//                  [](Subject& subject) { subject.set->resetPathsToBTree(); },
//                  [](Subject& subject) { /* nothing has changed */ },
//                  [](Subject& subject) { /* all is done */ });

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <new>
#include <vector>

#include "compressedpaths/BPathTree.hpp"
#include "tests/support/FailingHeap.hpp"

namespace compressedpaths {

using Refused = FailingHeap::Refused;

inline constexpr std::size_t kMostBlocks = 10'000;  // an operation that asks for more does not end
// All after it comes first: the C library loads a part of its own when an exception first passes
// through it, and ends the process if there is no memory for that.
inline constexpr std::array kWays{Refused::kAllAfter, Refused::kOne};

template <class Act>
bool succeeds(const Act& act) {
    try {
        act();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

/// Calls `prepare`, which gives what is acted on, then acts with one block after the other refused.
/// After each failure `requireUnchanged` looks at it, and the act succeeds when memory is there.
/// Returns how many blocks were refused in all.
template <class Prepare, class Act, class RequireUnchanged, class RequireDone>
std::size_t forEachBlock(Prepare prepare, Act act, RequireUnchanged requireUnchanged,
                         RequireDone requireDone) {
    std::size_t failures = 0;
    for (const Refused way : kWays) {
        for (std::size_t number = 1; number <= kMostBlocks; ++number) {
            SCOPED_TRACE(testing::Message() << "block " << number
                                            << (way == Refused::kOne ? "" : " and all after it"));
            auto subject = prepare();
            const auto step = [&] { act(*subject); };
            bool isDone = false;
            bool hasRefused = false;
            {
                const FailingHeap heap(number, way);
                isDone = succeeds(step);
                hasRefused = heap.hasRefused();
            }
            if (!isDone) {
                ++failures;
                requireUnchanged(*subject);
                EXPECT_TRUE(succeeds(step));
            }
            requireDone(*subject);
            if (testing::Test::HasFailure()) return failures;
            if (!hasRefused) break;
            EXPECT_LT(number, kMostBlocks);
        }
    }
    return failures;
}

/// The keys of the nodes, the top first.
inline std::vector<Bytes> keysOf(BPathTree::NodeStack stack) {
    std::vector<Bytes> keys;
    for (; !stack.empty(); stack.pop()) keys.push_back(stack.top()->key);
    return keys;
}

}  // namespace compressedpaths
