#pragma once
// Selection is some paths of a set: what was found, or the share of a reader. It holds positions
// or how to compute them, and no paths.
//
//     return Selection(set, ListedPaths(positions));
//
// Threads: as PathSequence.

#include <pybind11/pybind11.h>

#include <memory>
#include <utility>

#include "python/src/PathSequence.hpp"

namespace zqpaths::python {

class Selection : public PathSequence {
public:
    Selection(py::object source, const PathSequence& paths, Choice choice)
        : PathSequence(paths.set(), paths.type(),
                       std::make_shared<const Choice>(std::move(choice))),
          source_(std::move(source)) {}

    /// The set as Python has it, for who pickles the selection.
    const py::object& source() const noexcept { return source_; }

private:
    py::object source_;
};

void bindSelection(py::module_& module);

}  // namespace zqpaths::python
