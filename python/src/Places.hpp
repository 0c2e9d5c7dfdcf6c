#pragma once
// Places in a sequence, as arguments of Python name them: ints, of which negative ones count from
// the end, slices, and whatever holds ints.
//
//     std::uint64_t place = placeOf(index, sequence.size());       // s[-1]
//     SlicedPlaces places = slicedPlaces(slice, sequence.size());  // s[::2]
//     std::vector<std::uint64_t> some = placesOf(indices, sequence.size());
//
// Threads: with the interpreter's lock.

#include <pybind11/pybind11.h>

#include <cstdint>
#include <vector>

namespace zqpaths::python {

namespace py = pybind11;

/// Throws IndexError.
std::uint64_t placeAt(std::int64_t index, std::uint64_t size);

/// Throws IndexError, TypeError.
std::uint64_t placeOf(py::handle index, std::uint64_t size);

/// Places that are so far from one another.
struct SlicedPlaces {
    std::int64_t first;
    std::int64_t step;
    std::uint64_t count;

    std::uint64_t operator[](std::uint64_t i) const noexcept {
        return static_cast<std::uint64_t>(first + static_cast<std::int64_t>(i) * step);
    }
};

/// Throws ValueError for a step of 0, TypeError.
SlicedPlaces slicedPlaces(py::handle slice, std::uint64_t size);

/// Of a list, range, array of integers or any iterable of ints. Throws IndexError, TypeError.
/// O(indices); an array is read without making objects of its elements.
std::vector<std::uint64_t> placesOf(py::handle indices, std::uint64_t size);

/// A number from 0 on. Throws TypeError, ValueError with the name of the argument.
std::uint64_t naturalNumber(py::handle argument, const char* name);

}  // namespace zqpaths::python
