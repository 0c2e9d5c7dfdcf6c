#pragma once
// A binary heap that gives its smallest element first, with the steps of moving elements written
// out. Equal elements come out in an order that only these steps decide, and that order decides
// code words and with them saved bytes: the standard library's heap takes other steps.
//
//     FrequencyHeap<double, std::greater<>> heap;  // `After`: whether the first comes after
//     heap.push(2); heap.push(1);
//     heap.pop();  // 1
//
// Threads: a heap belongs to one thread at a time.

#include <cstddef>
#include <utility>
#include <vector>

namespace compressedpaths {

template <class Element, class After>
class FrequencyHeap {
public:
    std::size_t size() const noexcept { return elements_.size(); }

    /// The element that comes out next. Requires that there is one. O(1).
    const Element& top() const noexcept { return elements_.front(); }

    /// Throws only std::bad_alloc. O(log size).
    void push(const Element& element) {
        elements_.push_back(element);
        siftUp(elements_.size() - 1);
    }

    /// Removes and returns the top. Requires that there is one. O(log size).
    Element pop() {
        const Element top = elements_.front();
        const std::size_t hole = sinkHole();
        if (hole != elements_.size() - 1) {
            elements_[hole] = elements_.back();
            elements_.pop_back();
            siftUp(hole);
        } else {
            elements_.pop_back();
        }
        return top;
    }

private:
    /// Moves the element at `position` up as long as its parent comes after it; equals stay.
    void siftUp(std::size_t position) {
        const Element element = elements_[position];
        while (position > 0) {
            const std::size_t parent = (position - 1) / 2;
            if (!after_(elements_[parent], element)) break;
            elements_[position] = elements_[parent];
            position = parent;
        }
        elements_[position] = element;
    }

    /// Fills the top from below, child by child, and returns where the hole ends up: at a place
    /// without children. Of equal children the left one moves.
    std::size_t sinkHole() {
        std::size_t hole = 0;
        for (std::size_t child = 1; child < elements_.size(); child = 2 * hole + 1) {
            if (child + 1 < elements_.size() && after_(elements_[child], elements_[child + 1]))
                ++child;
            elements_[hole] = elements_[child];
            hole = child;
        }
        return hole;
    }

    std::vector<Element> elements_;
    [[no_unique_address]] After after_;
};

}  // namespace compressedpaths
