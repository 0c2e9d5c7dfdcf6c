#include "python/src/Writer.hpp"

#include <unistd.h>

#include <utility>

#include "python/src/Errors.hpp"

namespace zqpaths::python {
namespace {

// What is collected before it is added without the interpreter's lock.
constexpr std::size_t kPathsAtOnce = 4096;
constexpr std::size_t kBytesAtOnce = 1 << 18;

PathSetWriter::Mode modeOf(const std::string& mode) {
    if (mode == "w") return PathSetWriter::Mode::kReplace;
    if (mode == "a") return PathSetWriter::Mode::kAppend;
    if (mode == "x") return PathSetWriter::Mode::kCreate;
    refuse("mode '" + mode + "' is none of 'w', 'a' and 'x'");
}

}  // namespace

std::unique_ptr<PathSetWriter> openedWriter(py::handle file, const std::string& mode,
                                            bool isPacked) {
    const std::string name(GivenPath(file).text());
    const PathSetWriter::Mode opening = modeOf(mode);
    const auto form = isPacked ? PathSetWriter::Form::kPacked : PathSetWriter::Form::kImage;
    const py::gil_scoped_release unlocked;  // it may wait for another writer
    try {
        return std::make_unique<PathSetWriter>(name, opening, form);
    } catch (const Error& error) {
        const bool isNew =
            opening == PathSetWriter::Mode::kAppend && error.kind() == ErrorKind::kNotFound;
        if (!isNew) throw;
    }
    return std::make_unique<PathSetWriter>(name, PathSetWriter::Mode::kCreate, form);
}

Writer::Writer(py::object file, const std::string& mode, bool isPacked)
    : file_(std::move(file)),
      process_(::getpid()),
      writer_(naming(file_, [&] { return openedWriter(file_, mode, isPacked); })) {}

Writer::~Writer() {
    PyThreadState* const unlocked = PyEval_SaveThread();  // its threads end their work first
    // They are the parent's, and a child has none of them to wait for.
    if (process_ == ::getpid())
        writer_.reset();
    else
        static_cast<void>(writer_.release());
    PyEval_RestoreThread(unlocked);
}

template <class Work>
decltype(auto) Writer::alone(Work work) {
    const py::gil_scoped_release unlocked;
    const std::lock_guard lock(mutex_);
    if (process_ != ::getpid())
        throw Error(ErrorKind::kWrongUse, "", "the writer belongs to the process that opened it");
    if (!writer_) throw Error(ErrorKind::kWrongUse, "", "the writer has discarded its paths");
    return work(*writer_);
}

void Writer::add(py::handle path) {
    const GivenPath given(path);
    naming(file_, [&] { alone([&](PathSetWriter& writer) { writer.add(given.text()); }); });
}

void Writer::addAll(const TextList& paths) {
    naming(file_, [&] {
        alone([&](PathSetWriter& writer) {
            for (std::size_t i = 0; i < paths.size(); ++i) writer.add(paths[i]);
        });
    });
}

void Writer::extend(py::handle paths) {
    if (PyUnicode_Check(paths.ptr()) || PyBytes_Check(paths.ptr()))
        throw py::type_error("extend takes paths, not one; add takes one");
    TextList collected;
    collected.reserve(kPathsAtOnce, kBytesAtOnce);
    const auto pass = [&] {
        addAll(collected);
        collected.clear();
        if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    };
    try {
        for (const py::handle path : py::iter(paths)) {
            collected.append(GivenPath(path).text());
            if (collected.size() == kPathsAtOnce || collected.byteSize() >= kBytesAtOnce) pass();
        }
    } catch (const py::error_already_set&) {
        addAll(collected);  // those before the one that is none
        throw;
    }
    pass();
}

void Writer::commit() {
    naming(file_, [&] {
        alone([&](PathSetWriter& writer) {
            isOpen_ = false;
            writer.commit();
        });
    });
}

void Writer::discard() {
    alone([&](PathSetWriter& /*writer*/) {
        isOpen_ = false;
        writer_.reset();
    });
}

std::uint64_t Writer::size() {
    return alone([](PathSetWriter& writer) { return writer.size(); });
}

// --- What Python sees.

namespace {

/// Leaving a with statement: what was added counts unless an exception ends it.
void leave(Writer& writer, py::handle exceptionType, py::handle /*exception*/,
           py::handle /*traceback*/) {
    if (!writer.isOpen()) return;
    if (exceptionType.is_none())
        writer.commit();
    else
        writer.discard();
}

constexpr const char* kWriterDoc = R"(Makes a set file, or adds to one, in one pass over the paths.

mode is "w" to replace a file that may be there, "a" to append to the paths of a set (a new one if
there is none), "x" to refuse a file that is there. With packed=True the paths are kept as small as can
be, to be inflated by whoever reads them first.

>>> with zqpaths.Writer("more.zqp") as writer:
...     writer.add("/data/a.txt")
...     writer.extend(f"/data/{i}.png" for i in range(1000))
...     len(writer)
1001

What was added counts from the end of the with statement on, or from commit: until then whoever opens
the file sees what was there before, and so it stays if an exception ends the statement, or the
process. One process at a time writes to a set; another waits for up to five seconds.

Raises ExistsError, NotFoundError and other OSErrors, and Error for a file that is no set, is damaged
or held by another writer. Threads may share a writer; a forked child leaves it to its parent.)";

constexpr const char* kInitDoc = R"(__init__(self, file, mode="w", *, packed=False)
--

)";

constexpr const char* kAddDoc = R"(add(self, path)
--

Adds a path: str, bytes or os.PathLike. Raises UseError, a ValueError, for an empty path and one with
NUL, and TypeError for what is no path; the writer is then as it was.)";

constexpr const char* kExtendDoc = R"(extend(self, paths)
--

Adds all paths of an iterable, much faster than one by one. What the iterable raises passes through,
and so do the exceptions of add; the paths before are added then.)";

constexpr const char* kCommitDoc = R"(commit(self)
--

Makes the paths those of the file, on the disk when it returns. The writer takes no more then. A with
statement that ends does it.)";

constexpr const char* kDiscardDoc = R"(discard(self)
--

Forgets what was added: the file stays as it was. The writer takes no more then.)";

}  // namespace

void bindWriter(py::module_& module) {
    py::class_<Writer> writer(module, "Writer", kWriterDoc);
    writer.attr("__module__") = "zqpaths";
    writer.def(py::init<py::object, const std::string&, bool>(), kInitDoc, py::arg("file"),
               py::arg("mode") = "w", py::kw_only(), py::arg("packed") = false);
    writer.def("add", &Writer::add, kAddDoc, py::arg("path"));
    writer.def("extend", &Writer::extend, kExtendDoc, py::arg("paths"));
    writer.def("commit", &Writer::commit, kCommitDoc);
    writer.def("discard", &Writer::discard, kDiscardDoc);
    writer.def("__len__", &Writer::size);
    writer.def("__enter__", [](const py::object& self) { return self; });
    writer.def("__exit__", &leave);
}

}  // namespace zqpaths::python
