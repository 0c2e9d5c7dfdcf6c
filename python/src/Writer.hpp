#pragma once
// Writer makes a set file, or adds to one, in Python.
//
//     Writer writer(py::str("usr.zqp"), "w", false);
//     writer.extend(paths);
//     writer.commit();
//
// Threads: any number may add paths, one after the other. A forked child leaves the writer of its
// parent alone.

#include <pybind11/pybind11.h>
#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

#include "python/src/Texts.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths::python {

/// A writer of the library, opened as Python opens files: "w" replaces, "a" appends, to a new file
/// if there is none, "x" refuses a file that is there. Throws Error, and py::error_already_set with
/// ValueError for another mode.
std::unique_ptr<PathSetWriter> openedWriter(py::handle file, const std::string& mode,
                                            bool isPacked);

class Writer {
public:
    Writer(py::object file, const std::string& mode, bool isPacked);
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer();

    /// Throw Error as PathSetWriter does, and py::error_already_set.
    void add(py::handle path);
    void extend(py::handle paths);
    void commit();

    /// Forgets what was added. The writer then takes no more.
    void discard();

    /// Paths that the set will have.
    std::uint64_t size();

    /// Whether neither commit nor discard has ended it.
    bool isOpen() const noexcept { return isOpen_; }

private:
    void addAll(const TextList& paths);

    /// Calls `work(writer)` without the interpreter's lock, while no other thread does.
    template <class Work>
    decltype(auto) alone(Work work);

    py::object file_;
    pid_t process_;
    std::mutex mutex_;
    std::unique_ptr<PathSetWriter> writer_;  // none when discarded
    bool isOpen_ = true;
};

void bindWriter(py::module_& module);

}  // namespace zqpaths::python
