#include "python/src/Indexing.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "python/src/Errors.hpp"
#include "python/src/OpenedPathSet.hpp"
#include "python/src/Texts.hpp"
#include "python/src/Writer.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"

namespace zqpaths::python {
namespace {

constexpr std::uint64_t kPathsAProgress = 1000;

/// Throws OSError, as the class that fits, unless it is a directory.
void requireDirectory(const std::string& directory, py::handle given) {
    struct stat status {};
    errno = 0;
    if (::stat(directory.c_str(), &status) == 0 && !S_ISDIR(status.st_mode)) errno = ENOTDIR;
    if (errno == 0) return;
    PyErr_SetFromErrnoWithFilenameObject(PyExc_OSError, given.ptr());
    throw py::error_already_set();
}

/// Calls what was given for it, unless that is None; and the handlers of signals.
void tellProgress(const py::object& progress, std::uint64_t count) {
    const py::gil_scoped_acquire lock;
    if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    if (!progress.is_none()) progress(count);
}

/// Tells of what cannot be read. Nothing is left out silently: who does not ask to be told gets an
/// exception.
void tellUnreadable(const py::object& onError, std::string_view path, std::string_view reason) {
    if (onError.is_none()) throw Error(ErrorKind::kSystem, path, reason);
    const py::gil_scoped_acquire lock;
    onError(pathObject(path, PathType::kText), pathObject(reason, PathType::kText));
}

OpenedPathSet index(py::handle directory, const py::object& file, const std::string& mode,
                    bool hasHidden, bool followsLinks, bool isOneFileSystem, bool isPacked,
                    const py::object& progress, const py::object& onError) {
    const std::string root(GivenPath(directory).text());
    requireDirectory(root, directory);
    const WalkOptions options{.follow = followsLinks,
                              .oneFileSystem = isOneFileSystem,
                              .skipHidden = !hasHidden,
                              .jobs = 0};
    naming(file, [&] {
        const std::unique_ptr<PathSetWriter> writer = openedWriter(file, mode, isPacked);
        const py::gil_scoped_release unlocked;
        std::uint64_t count = 0;
        const auto add = [&](std::string_view path) {
            writer->add(path);
            if (++count % kPathsAProgress == 0) tellProgress(progress, count);
        };
        walkDirectory(root, options, add, [&](std::string_view path, std::string_view reason) {
            tellUnreadable(onError, path, reason);
        });
        if (count == 0 || count % kPathsAProgress != 0) tellProgress(progress, count);
        writer->commit();
    });
    return openedSet(file, PathType::kText);
}

constexpr const char* kIndexingDoc =
    R"(index(directory, file, *, mode="x", hidden=True, follow=False, one_file_system=False, packed=False, progress=None, on_error=None)
--

Makes a set of all that a directory holds, at any depth, and opens it: a PathSet.

In it is what is no directory: in each directory in the order of bytes, before its sub-directories.
Paths begin with the directory as given.

>>> import os
>>> os.makedirs("images/cats")
>>> for name in ["images/b.png", "images/a.png", "images/cats/c.png"]:
...     open(name, "w").close()
>>> list(zqpaths.index("images", "images.zqp"))
['images/a.png', 'images/b.png', 'images/cats/c.png']

mode and packed are those of Writer. hidden=False leaves out names that begin with a dot, follow=True
walks through symbolic links to directories, one_file_system=True leaves out what is mounted below.

progress(count) is called with the number of paths so far, after every thousand and at the end.
on_error(path, reason) is called for what cannot be read; without it, that raises SystemRefusal, an
OSError. An exception of either, and Ctrl-C, ends it all and leaves the file as it was.)";

}  // namespace

void bindIndexing(py::module_& module) {
    module.def("index", &index, kIndexingDoc, py::arg("directory"), py::arg("file"), py::kw_only(),
               py::arg("mode") = "x", py::arg("hidden") = true, py::arg("follow") = false,
               py::arg("one_file_system") = false, py::arg("packed") = false,
               py::arg("progress") = py::none(), py::arg("on_error") = py::none());
}

}  // namespace zqpaths::python
