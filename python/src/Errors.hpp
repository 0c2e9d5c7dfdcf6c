#pragma once
// Errors of the library as exceptions of Python; zqpaths/_errors.py has the classes.
//
//     naming(file, [&] { return PathSet::open(file); });  // FileNotFoundError, with this filename
//
// Threads: all of it with the interpreter's lock; `work` may do without it meanwhile.

#include <pybind11/pybind11.h>

#include <string>

#include "zqpaths/Error.hpp"

namespace zqpaths::python {

namespace py = pybind11;

/// Has every Error that leaves the module become an exception.
void translateErrors();

/// The words of an error as a str. They may hold the name of a file, in any bytes.
py::object words(const Error& error);

/// Raises the exception that an error is, about `file` unless that is none; a MemoryError if there
/// is no memory for it.
void raise(const Error& error, const py::object& file = py::none());

/// Raises what is being handled as the exception that it is. Nothing of C++ leaves it, so that
/// slots may end with it.
void raiseHandled() noexcept;

/// What `work()` gives. Exceptions about files get this one as their filename.
template <class Work>
decltype(auto) naming(const py::object& file, Work work) {
    try {
        return work();
    } catch (const Error& error) {
        raise(error, file);
        throw py::error_already_set();
    }
}

/// Throws ValueError with this text.
[[noreturn]] inline void refuse(const std::string& text) {
    throw py::value_error(text);
}

}  // namespace zqpaths::python
