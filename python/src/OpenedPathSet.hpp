#pragma once
// OpenedPathSet is a set in a file as Python has it: all its paths, in their order, and what can be
// asked of it as a whole.
//
//     OpenedPathSet set = openedSet(py::str("usr.zqp"), PathType::kText);
//
// Threads: as PathSequence.

#include <pybind11/pybind11.h>

#include "python/src/PathSequence.hpp"

namespace zqpaths::python {

class OpenedPathSet : public PathSequence {
public:
    /// The set is opened by its absolute name, which stays right wherever the process goes.
    OpenedPathSet(const zqpaths::PathSet& set, PathType type, bool isPartial)
        : PathSequence(set, type), isPartial_(isPartial) {}

    /// Whether it was opened as far as its files are there.
    bool isPartial() const noexcept { return isPartial_; }

private:
    bool isPartial_;
};

/// Opens the set in a file, which is given as str, bytes or os.PathLike. Throws
/// py::error_already_set.
OpenedPathSet openedSet(py::handle file, PathType type, bool isPartial = false);

void bindPathSet(py::module_& module);

}  // namespace zqpaths::python
