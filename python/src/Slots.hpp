#pragma once
// Slots of types: what the interpreter calls without looking up a method first, for the operations
// that a program does for every path.
//
//     PyObject* nextOf(PyObject* self) {
//         return inSlot<PathIterator>(self, nullptr, [](PathIterator& it) { return it.next(); });
//     }
//
// Threads: with the interpreter's lock.

#include <pybind11/pybind11.h>

#include "python/src/Errors.hpp"

namespace zqpaths::python {

/// What `work` gives for the object, which is of a type of ours with this class at its front; or
/// `failed`, with the exception raised, since what C++ throws must not pass through the
/// interpreter.
template <class Class, class Result, class Work>
Result inSlot(PyObject* self, Result failed, Work work) {
    auto* instance = reinterpret_cast<py::detail::instance*>(self);
    try {
        return work(*static_cast<Class*>(instance->get_value_and_holder().value_ptr()));
    } catch (...) {
        raiseHandled();
    }
    return failed;
}

/// Keeps Python from making objects of a type, which would have nothing of C++ in them.
inline void refuseMaking(PyHeapTypeObject* type) {
    type->ht_type.tp_flags |= Py_TPFLAGS_DISALLOW_INSTANTIATION;
}

}  // namespace zqpaths::python
