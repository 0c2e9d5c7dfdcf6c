#pragma once
// PathIterator goes through a sequence, forwards or backwards. It reads the paths piece by piece,
// without the interpreter's lock, so that going through all of them is nearly as fast as through a
// list.
//
//     py::object iterator = py::cast(PathIterator(paths, false));
//
// Threads: several may take paths of one iterator, each of which goes to one of them.

#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <mutex>

#include "python/src/PathSequence.hpp"

namespace zqpaths::python {

class PathIterator {
public:
    PathIterator(PathSequence paths, bool isBackwards);

    /// A new reference to the next path, or none at the end. Throws as PathSequence::list.
    PyObject* next();

    /// Paths that are still to come.
    std::uint64_t left() const;

private:
    bool hasReadPath() const noexcept { return nextOfPiece_ < PyList_GET_SIZE(piece_.ptr()); }
    void readPiece();

    PathSequence paths_;
    bool isBackwards_;
    std::uint64_t readCount_ = 0;  // of the paths, those of the piece included
    std::uint64_t pieceSize_;
    py::list piece_;
    Py_ssize_t nextOfPiece_ = 0;
    std::unique_ptr<std::mutex> reading_;  // by one thread, while others wait
};

void bindPathIterator(py::module_& module);

}  // namespace zqpaths::python
