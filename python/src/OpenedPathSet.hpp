#pragma once
// OpenedPathSet is a set in a file as Python has it: all its paths, in their order, and what can be
// asked of it as a whole.
//
//     py::object set = openedSet(py::str("usr.zqp"), PathType::kText);
//
// Threads: as PathSequence.

#include <pybind11/pybind11.h>

#include <string>
#include <utility>

#include "python/src/PathSequence.hpp"

namespace zqpaths::python {

class OpenedPathSet : public PathSequence {
public:
    /// `file` is its absolute name, which stays right wherever the process goes.
    OpenedPathSet(const zqpaths::PathSet& set, PathType type, std::string file)
        : PathSequence(set, type), file_(std::move(file)) {}

    const std::string& file() const noexcept { return file_; }

private:
    std::string file_;
};

/// Opens the set in a file, which is given as str, bytes or os.PathLike. Throws
/// py::error_already_set.
OpenedPathSet openedSet(py::handle file, PathType type);

void bindPathSet(py::module_& module);

}  // namespace zqpaths::python
