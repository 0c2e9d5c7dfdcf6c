#pragma once
// A set of all that a directory holds:
//
//     zqpaths.index("/usr", "usr.zqp", progress=print)
//
// Threads: the interpreter's lock is taken for the callbacks alone.

#include <pybind11/pybind11.h>

namespace zqpaths::python {

void bindIndexing(pybind11::module_& module);

}  // namespace zqpaths::python
