#pragma once
// Long work without the interpreter's lock takes it now and then, so that Ctrl-C ends the work:
//
//     Interruption interruption;
//     set.find(pattern, [&](std::uint64_t number, std::string_view path) {
//         interruption.step();
//         ...
//     });
//
// Threads: each belongs to one thread, which does not hold the lock.

#include <pybind11/pybind11.h>

#include <cstdint>

namespace zqpaths::python {

class Interruption {
public:
    /// Throws py::error_already_set with what a signal's handler has raised.
    void step() {
        if (++stepCount_ % kSteps == 0) look();
    }

private:
    static constexpr std::uint64_t kSteps = 1 << 16;  // some ten milliseconds

    static void look() {
        const pybind11::gil_scoped_acquire lock;
        if (PyErr_CheckSignals() != 0) throw pybind11::error_already_set();
    }

    std::uint64_t stepCount_ = 0;
};

}  // namespace zqpaths::python
