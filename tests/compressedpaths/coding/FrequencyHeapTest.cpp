#include "compressedpaths/coding/FrequencyHeap.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace compressedpaths {
namespace {

struct Element {
    int frequency;
    char name;
};

struct Behind {
    bool operator()(const Element& a, const Element& b) const { return a.frequency > b.frequency; }
};

using Heap = FrequencyHeap<Element, Behind>;

std::string popAll(Heap& heap) {
    std::string names;
    while (heap.size() > 0) names.push_back(heap.pop().name);
    return names;
}

/// The same steps on a list that keeps its holes: slow, recursive and by exchange of neighbours.
class SlowHeap {
public:
    std::size_t size() const { return elements_.size(); }

    void push(const Element& element) {
        elements_.push_back(element);
        rise(elements_.size());
    }

    Element pop() {
        const Element top = at(1);
        const std::size_t hole = sink(1);
        const Element last = elements_.back();
        elements_.pop_back();
        if (hole <= elements_.size()) {
            at(hole) = last;
            rise(hole);
        }
        return top;
    }

private:
    // Counted from 1, so that the children of n are 2n and 2n + 1.
    Element& at(std::size_t place) { return elements_[place - 1]; }

    void rise(std::size_t place) {
        if (place == 1 || at(place / 2).frequency <= at(place).frequency) return;
        std::swap(at(place / 2), at(place));
        rise(place / 2);
    }

    std::size_t sink(std::size_t hole) {
        const std::size_t left = 2 * hole;
        const std::size_t right = left + 1;
        if (left > size()) return hole;
        const bool takesRight = right <= size() && at(left).frequency > at(right).frequency;
        const std::size_t child = takesRight ? right : left;
        at(hole) = at(child);
        return sink(child);
    }

    std::vector<Element> elements_;
};

/// Calls `visit` with every list of `length` frequencies below `limit`.
template <class Visit>
void forAllLists(std::size_t length, int limit, Visit visit) {
    std::vector<int> list(length, 0);
    while (true) {
        visit(list);
        std::size_t place = 0;
        while (place < length && list[place] == limit - 1) list[place++] = 0;
        if (place == length) return;
        ++list[place];
    }
}

TEST(FrequencyHeap, givesTheSmallestFirst) {
    Heap heap;
    heap.push({3, 'a'});
    heap.push({1, 'b'});
    heap.push({2, 'c'});
    EXPECT_EQ(heap.top().name, 'b');
    EXPECT_EQ(popAll(heap), "bca");
}

// Popping a moves b and then d up and leaves b d c e. Popping b moves d and then e up: d e c.
// Popping d finds e and c equal and moves e, the left one, up: e c.
TEST(FrequencyHeap, givesFiveEqualsInTheOrderOfItsSteps) {
    Heap heap;
    for (const char name : {'a', 'b', 'c', 'd', 'e'}) heap.push({1, name});
    EXPECT_EQ(popAll(heap), "abdec");
}

TEST(FrequencyHeap, doesNotMoveAnElementAboveAnEqualOne) {
    Heap heap;
    heap.push({1, 'a'});
    heap.push({1, 'b'});
    EXPECT_EQ(heap.top().name, 'a');
    EXPECT_EQ(popAll(heap), "ab");
}

TEST(FrequencyHeap, takesTheRightChildOnlyIfItIsSmaller) {
    Heap heap;
    heap.push({1, 'a'});
    heap.push({3, 'b'});
    heap.push({2, 'c'});
    heap.pop();
    EXPECT_EQ(heap.top().name, 'c');
}

TEST(FrequencyHeap, popsLikeTheSlowModelForAllShortLists) {
    for (std::size_t length = 0; length <= 8; ++length) {
        forAllLists(length, 3, [&](const std::vector<int>& frequencies) {
            Heap heap;
            SlowHeap model;
            char name = 'a';
            for (const int frequency : frequencies) {
                heap.push({frequency, name});
                model.push({frequency, name++});
            }
            std::string expected;
            while (model.size() > 0) expected.push_back(model.pop().name);
            ASSERT_EQ(popAll(heap), expected) << testing::PrintToString(frequencies);
        });
    }
}

// Joining the two first and pushing the sum is how a coding tree is built.
TEST(FrequencyHeap, joinsLikeTheSlowModelForAllShortLists) {
    const auto order = [](auto heap, const std::vector<int>& frequencies) {
        std::string names;
        char name = 'a';
        for (const int frequency : frequencies) heap.push({frequency, name++});
        while (heap.size() >= 2) {
            const Element left = heap.pop();
            const Element right = heap.pop();
            names += {left.name, right.name};
            heap.push({left.frequency + right.frequency, name++});
        }
        return names;
    };
    for (std::size_t length = 1; length <= 9; ++length) {
        forAllLists(length, 3, [&](const std::vector<int>& frequencies) {
            ASSERT_EQ(order(Heap(), frequencies), order(SlowHeap(), frequencies))
                << testing::PrintToString(frequencies);
        });
    }
}

TEST(FrequencyHeap, givesFrequenciesInAscendingOrder) {
    forAllLists(6, 5, [](const std::vector<int>& frequencies) {
        Heap heap;
        for (const int frequency : frequencies) heap.push({frequency, '-'});
        std::vector<int> popped;
        while (heap.size() > 0) popped.push_back(heap.pop().frequency);
        std::vector<int> expected = frequencies;
        std::sort(expected.begin(), expected.end());
        ASSERT_EQ(popped, expected);
    });
}

}  // namespace
}  // namespace compressedpaths
