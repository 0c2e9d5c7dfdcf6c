#pragma once
// PathSequence is what sets and selections are in Python: a sequence of paths that are read when
// they are asked for.
//
//     const PathSequence all(PathSet::open("usr.zqp"), PathType::kText);
//     py::object first = all.path(0);
//     py::list some = all.list(places.size(), [&](std::uint64_t i) { return places[i]; });
//
// Threads: never changes. Its calls hold the interpreter's lock and give it up where they can take
// long.

#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "python/src/Choice.hpp"
#include "python/src/Texts.hpp"
#include "zqpaths/PathSet.hpp"

namespace zqpaths::python {

class PathSequence {
public:
    /// All paths of a set.
    PathSequence(const zqpaths::PathSet& set, PathType type)
        : PathSequence(set, type, std::make_shared<const Choice>(AllPaths(set.size()))) {}
    PathSequence(zqpaths::PathSet set, PathType type, std::shared_ptr<const Choice> choice);

    const zqpaths::PathSet& set() const noexcept { return set_; }
    PathType type() const noexcept { return type_; }
    const std::shared_ptr<const Choice>& choice() const noexcept { return choice_; }
    std::uint64_t size() const { return sizeOf(*choice_); }

    // What reads paths throws Error as PathSet does, and py::error_already_set.

    /// The path at a place, which there is.
    py::object path(std::uint64_t place) const;

    /// The paths at `count` places, which there are, as a list. O(log entries + bytes) each; less
    /// where they ascend. Of the bytes, a piece is held at a time.
    template <class PlaceAt>
    py::list list(std::uint64_t count, PlaceAt placeAt) const {
        py::list paths(count);
        TextList texts;
        forEachPiece(count, placeAt,
                     [&](std::uint64_t first, std::span<const std::uint64_t> numbers) {
                         texts.clear();
                         read(numbers, texts);
                         for (std::size_t i = 0; i < texts.size(); ++i)
                             PyList_SET_ITEM(paths.ptr(), static_cast<Py_ssize_t>(first + i),
                                             pathObject(texts[i], type_).release().ptr());
                     });
        return paths;
    }

    /// The same as two arrays of numpy: where each path begins in the bytes of all, and where the
    /// last one ends; and these bytes.
    py::tuple arrays(const std::vector<std::uint64_t>& places) const;

    /// The positions in the set of the paths from place `start` to before `stop`, which there are,
    /// as an array of numpy.
    py::object positions(std::uint64_t start, std::uint64_t stop) const;

    /// The lowest place of a path from `start` to before `stop`, if there is one. O(components *
    /// log folders + names in its folder); where the set has the path more often, or it is to be
    /// counted, O(what is in a folder of this name) besides. O(size) in a shuffle.
    std::optional<std::uint64_t> lowestPlace(const GivenPath& path, std::uint64_t start,
                                             std::uint64_t stop) const;
    std::uint64_t count(const GivenPath& path) const;

private:
    static constexpr std::uint64_t kPathsPerPiece = 1 << 16;

    /// Calls `visit(i, numbers)` for the numbers at the places from i on, piece by piece.
    template <class PlaceAt, class Visit>
    void forEachPiece(std::uint64_t count, PlaceAt placeAt, Visit visit) const {
        std::vector<std::uint64_t> numbers;
        for (std::uint64_t first = 0; first < count; first += numbers.size()) {
            if (PyErr_CheckSignals() != 0) throw py::error_already_set();
            numbers.resize(std::min(kPathsPerPiece, count - first));
            for (std::size_t i = 0; i < numbers.size(); ++i)
                numbers[i] = numberAt(*choice_, placeAt(first + i));
            visit(first, std::span<const std::uint64_t>(numbers));
        }
    }

    /// Calls `visit(place)` for the places of a path until it returns false, without the
    /// interpreter's lock.
    template <class Visit>
    void forEachPlace(std::string_view path, Visit visit) const;

    /// Appends the paths with these numbers, without the interpreter's lock.
    void read(std::span<const std::uint64_t> numbers, TextList& texts) const;

    zqpaths::PathSet set_;
    PathType type_;
    bool canTakeLong_;  // to read one path
    std::shared_ptr<const Choice> choice_;
};

void bindPathSequence(py::module_& module);

}  // namespace zqpaths::python
