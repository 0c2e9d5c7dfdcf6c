#include "python/src/Errors.hpp"

#include <cerrno>
#include <exception>
#include <new>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zqpaths::python {
namespace {

const char* nameOf(ErrorKind kind) noexcept {
    switch (kind) {
        case ErrorKind::kNotFound:
            return "not_found";
        case ErrorKind::kExists:
            return "exists";
        case ErrorKind::kNotASet:
            return "not_a_set";
        case ErrorKind::kDamaged:
            return "damaged";
        case ErrorKind::kHeld:
            return "held";
        case ErrorKind::kNoSpace:
            return "no_space";
        case ErrorKind::kSystem:
            return "system";
        case ErrorKind::kWrongUse:
            break;
    }
    return "wrong_use";
}

}  // namespace

py::object words(const Error& error) {
    return py::reinterpret_steal<py::object>(PyUnicode_DecodeFSDefault(error.what()));
}

void raise(const Error& error, const py::object& file) {
    const py::object exception =
        py::module_::import("zqpaths._errors")
            .attr("exception_of")(nameOf(error.kind()), words(error), error.systemCode(), file);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(exception.ptr())), exception.ptr());
}

void raiseHandled() noexcept {
    try {
        try {
            throw;
        } catch (const Error& error) {
            raise(error);  // which may have no memory for it
        }
    } catch (py::error_already_set& error) {
        error.restore();
    } catch (const py::builtin_exception& error) {
        error.set_error();
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    } catch (const std::system_error& error) {
        errno = error.code().value();
        PyErr_SetFromErrno(PyExc_OSError);
    } catch (const std::exception& error) {
        // Where the interpreter could not make an object, pybind11 throws beside what that has
        // raised.
        if (PyErr_Occurred() == nullptr) PyErr_SetString(PyExc_RuntimeError, error.what());
    }
}

void translateErrors() {
    py::register_local_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown) std::rethrow_exception(std::move(thrown));
        } catch (const Error&) {
            raiseHandled();
        } catch (const std::system_error&) {
            raiseHandled();
        } catch (const std::bad_alloc&) {
            raiseHandled();
        } catch (const std::runtime_error&) {
            if (PyErr_Occurred() == nullptr) throw;
        }
    });
}

}  // namespace zqpaths::python
