// The module failing_heap lets a process of Python refuse itself blocks of memory:
//
//     failing_heap.refuse(3, False)  # the third block from here on, or, with True, all after it,
//     too call() failing_heap.grant()           # True if a block was refused
//
// It has to be preloaded, so that its malloc is the one that everybody calls.

#include <Python.h>

#include <optional>

#include "tests/support/FailingHeap.hpp"

namespace {

std::optional<FailingHeap> heap;  // of the thread that holds the interpreter

PyObject* refuse(PyObject* /*module*/, PyObject* arguments) {
    Py_ssize_t number = 0;
    int isAllAfter = 0;
    if (PyArg_ParseTuple(arguments, "np", &number, &isAllAfter) == 0) return nullptr;
    heap.emplace(static_cast<std::size_t>(number),
                 isAllAfter == 0 ? FailingHeap::Refused::kOne : FailingHeap::Refused::kAllAfter);
    Py_RETURN_NONE;
}

PyObject* grant(PyObject* /*module*/, PyObject* /*arguments*/) {
    const bool hasRefused = heap->hasRefused();
    heap.reset();
    if (hasRefused) Py_RETURN_TRUE;
    Py_RETURN_FALSE;
}

PyMethodDef functions[] = {{"refuse", refuse, METH_VARARGS, nullptr},
                           {"grant", grant, METH_NOARGS, nullptr},
                           {nullptr, nullptr, 0, nullptr}};
PyModuleDef definition{PyModuleDef_HEAD_INIT,
                       "failing_heap",
                       nullptr,
                       -1,
                       functions,
                       nullptr,
                       nullptr,
                       nullptr,
                       nullptr};

}  // namespace

PyMODINIT_FUNC PyInit_failing_heap() {
    return PyModule_Create(&definition);
}
