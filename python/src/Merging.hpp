#pragma once
// A set of sets, which names set files:
//
//     zqpaths.merge(["a.zqp", "b.zqp"], "all.zqs")
//
// Threads: the interpreter's lock is taken for the names alone.

#include <pybind11/pybind11.h>

namespace zqpaths::python {

void bindMerging(pybind11::module_& module);

}  // namespace zqpaths::python
