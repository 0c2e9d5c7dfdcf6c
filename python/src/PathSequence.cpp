#include "python/src/PathSequence.hpp"

#include <pybind11/numpy.h>

#include <limits>
#include <utility>

#include "python/src/Errors.hpp"
#include "python/src/Interruption.hpp"
#include "python/src/PathIterator.hpp"
#include "python/src/Places.hpp"
#include "python/src/Slots.hpp"

namespace zqpaths::python {
namespace {

/// An array of numpy that owns these values.
template <class Value>
py::array_t<Value> arrayOf(std::vector<Value> values) {
    auto owner = std::make_unique<std::vector<Value>>(std::move(values));
    const std::vector<Value>& kept = *owner;
    const py::capsule release(owner.get(),
                              [](void* owned) { delete static_cast<std::vector<Value>*>(owned); });
    static_cast<void>(owner.release());  // to the capsule
    return py::array_t<Value>(static_cast<py::ssize_t>(kept.size()), kept.data(), release);
}

/// Whether one path can take long: where a segment has to be inflated first, or a file to be
/// mapped. Asks nothing of the files of a set of sets, which are not opened before they are needed.
bool canTakeLong(const zqpaths::PathSet& set) {
    const bool isOneFile = set.fileCount() == 1 && set.fileName(0) == set.file();
    if (!isOneFile) return true;
    const auto segments = set.segments();
    return std::any_of(segments.begin(), segments.end(),
                       [](const auto& segment) { return segment.isPacked; });
}

}  // namespace

PathSequence::PathSequence(zqpaths::PathSet set, PathType type,
                           std::shared_ptr<const Choice> choice)
    : set_(std::move(set)),
      type_(type),
      canTakeLong_(canTakeLong(set_)),
      choice_(std::move(choice)) {}

py::object PathSequence::path(std::uint64_t place) const {
    constexpr std::size_t kUsualSize = 256;  // of most paths; a text that grows moves several times
    std::string text;
    text.reserve(kUsualSize);
    const auto read = [&] { set_.appendPath(numberAt(*choice_, place), text); };
    if (canTakeLong_) {
        const py::gil_scoped_release unlocked;
        read();
    } else {
        read();  // sooner done than the lock is given up
    }
    return pathObject(text, type_);
}

void PathSequence::read(std::span<const std::uint64_t> numbers, TextList& texts) const {
    const py::gil_scoped_release unlocked;
    set_.paths(numbers,
               [&](std::uint64_t /*number*/, std::string_view path) { texts.append(path); });
}

py::tuple PathSequence::arrays(const std::vector<std::uint64_t>& places) const {
    std::vector<std::int64_t> offsets{0};
    offsets.reserve(places.size() + 1);
    std::vector<std::uint8_t> bytes;
    forEachPiece(
        places.size(), [&](std::uint64_t i) { return places[i]; },
        [&](std::uint64_t /*first*/, std::span<const std::uint64_t> numbers) {
            const py::gil_scoped_release unlocked;
            set_.paths(numbers, [&](std::uint64_t /*number*/, std::string_view path) {
                bytes.insert(bytes.end(), path.begin(), path.end());
                offsets.push_back(static_cast<std::int64_t>(bytes.size()));
            });
        });
    return py::make_tuple(arrayOf(std::move(offsets)), arrayOf(std::move(bytes)));
}

py::object PathSequence::positions(std::uint64_t start, std::uint64_t stop) const {
    std::vector<std::int64_t> positions(stop - start);
    {
        const py::gil_scoped_release unlocked;
        for (std::uint64_t i = 0; i < positions.size(); ++i)
            positions[i] = static_cast<std::int64_t>(numberAt(*choice_, start + i) - 1);
    }
    return arrayOf(std::move(positions));
}

template <class Visit>
void PathSequence::forEachPlace(std::string_view path, Visit visit) const {
    const py::gil_scoped_release unlocked;
    const auto visitNumber = [&](std::uint64_t number) {
        const std::optional<std::uint64_t> place = placeOf(*choice_, number);
        return !place || visit(*place);
    };
    const std::optional<std::uint64_t> lowest = set_.numberOf(path);
    if (!lowest || !visitNumber(*lowest)) return;
    // The library looks up the lowest number. All of them are among what is under a folder of this
    // name, which is a few paths as a rule.
    Interruption interruption;
    set_.under(path, [&](std::uint64_t number, std::string_view found) {
        interruption.step();
        return number == *lowest || found != path || visitNumber(number);
    });
}

std::optional<std::uint64_t> PathSequence::lowestPlace(const GivenPath& path, std::uint64_t start,
                                                       std::uint64_t stop) const {
    std::optional<std::uint64_t> lowest;
    forEachPlace(path.text(), [&](std::uint64_t place) {
        if (place >= start && place < stop && place < lowest.value_or(stop)) lowest = place;
        // Where places ascend, the first one from `start` on is the lowest.
        return place < start || !isAscending(*choice_);
    });
    return lowest;
}

std::uint64_t PathSequence::count(const GivenPath& path) const {
    std::uint64_t count = 0;
    forEachPlace(path.text(), [&](std::uint64_t /*place*/) { return ++count > 0; });
    return count;
}

// --- What Python sees.

namespace {

/// As slices clamp their ends: negative ones count from the end, and those beyond it are the end.
std::uint64_t clampedPlace(py::handle index, std::uint64_t size) {
    const Py_ssize_t number = PyNumber_AsSsize_t(index.ptr(), nullptr);
    if (number == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
    if (number >= 0) return std::min(static_cast<std::uint64_t>(number), size);
    const auto below = std::uint64_t{0} - static_cast<std::uint64_t>(number);
    return size - std::min(below, size);
}

py::object item(const PathSequence& paths, py::handle index) {
    if (PySlice_Check(index.ptr()) == 0) return paths.path(placeOf(index, paths.size()));
    const SlicedPlaces places = slicedPlaces(index, paths.size());
    return paths.list(places.count, [&](std::uint64_t i) { return places[i]; });
}

Py_ssize_t lengthOf(PyObject* self) {
    return inSlot<PathSequence>(self, Py_ssize_t{-1}, [](const PathSequence& paths) {
        return static_cast<Py_ssize_t>(paths.size());
    });
}

PyObject* itemOf(PyObject* self, PyObject* index) {
    return inSlot<PathSequence>(
        self, static_cast<PyObject*>(nullptr),
        [index](const PathSequence& paths) { return item(paths, index).release().ptr(); });
}

/// By a place as C has it, from which negative ones are gone.
PyObject* itemAt(PyObject* self, Py_ssize_t index) {
    return inSlot<PathSequence>(self, static_cast<PyObject*>(nullptr),
                                [index](const PathSequence& paths) {
                                    return paths.path(placeAt(index, paths.size())).release().ptr();
                                });
}

void setSlots(PyHeapTypeObject* type) {
    refuseMaking(type);
    type->as_mapping.mp_length = lengthOf;
    type->as_mapping.mp_subscript = itemOf;
    type->as_sequence.sq_length = lengthOf;
    type->as_sequence.sq_item = itemAt;
}

py::object take(const PathSequence& paths, py::handle indices, bool isArrowLike) {
    const std::vector<std::uint64_t> places = placesOf(indices, paths.size());
    if (isArrowLike) return paths.arrays(places);
    return paths.list(places.size(), [&](std::uint64_t i) { return places[i]; });
}

py::object positionsBetween(const PathSequence& paths, py::handle start, py::handle stop) {
    const std::uint64_t end = clampedPlace(stop, paths.size());
    return paths.positions(std::min(clampedPlace(start, paths.size()), end), end);
}

std::uint64_t indexOf(const PathSequence& paths, py::handle path, py::handle start,
                      py::handle stop) {
    const std::uint64_t size = paths.size();
    const std::uint64_t end = stop.is_none() ? size : clampedPlace(stop, size);
    const std::uint64_t begin = clampedPlace(start, size);
    if (const auto given = GivenPath::lookedFor(path))
        if (const auto place = paths.lowestPlace(*given, begin, end)) return *place;
    refuse(std::string(py::repr(path)) + " is not in the sequence");
}

bool contains(const PathSequence& paths, py::handle path) {
    const auto given = GivenPath::lookedFor(path);
    return given && paths.lowestPlace(*given, 0, paths.size());
}

std::uint64_t countOf(const PathSequence& paths, py::handle path) {
    const auto given = GivenPath::lookedFor(path);
    return given ? paths.count(*given) : 0;
}

constexpr const char* kSequenceDoc = R"(A sequence of paths that are read when they are asked for.

What PathSet and Selection have in common: all that collections.abc.Sequence has, and take.
Positions count from 0, negative ones from the end; a slice is a list.

>>> s[1], s[-1], s[:2]
('/data/b.txt', '/data/b/c.txt', ['/data/a.txt', '/data/b.txt'])

A path is a str, as os.fsdecode makes it of the bytes, so that every path can be a str and open(path)
finds the file; or bytes, in a set that was opened with as_bytes=True. Where a path is an argument it
may be str, bytes or os.PathLike.

Sequences never change. Any number of threads and forked processes may read one, and the interpreter's
lock is given up while many paths are read. Where the bytes in the file are damaged, whatever reads
them raises Error.)";

constexpr const char* kTakeDoc = R"(take(self, indices, *, arrow_like=False)
--

The paths at these positions, in this order: a list, or two arrays.

indices is a list, a range, an array of integers or any iterable of ints; negative ones count from
the end. Raises IndexError, before anything is read, for a position that there is not.

>>> s.take([2, 0])
['/data/b/c.txt', '/data/a.txt']

With arrow_like=True the paths come without an object each, as Apache Arrow lays out texts: where each
begins (numpy int64, one more than there are paths) in the bytes of all (numpy uint8).

>>> offsets, data = s.take([2, 0], arrow_like=True)
>>> offsets
array([ 0, 13, 24])
>>> data[offsets[1]:offsets[2]].tobytes()
b'/data/a.txt')";

constexpr const char* kIndexDoc = R"(index(self, path, start=0, stop=None)
--

The first position of a path, from start to before stop. Raises ValueError if it has none.

The path is looked up, not searched for: that takes microseconds, also for millions of paths; only
in a shuffled share is it as long as the share. If the path stands in the set more than once and the
first position is before start, what is in a folder of this name is looked through.

>>> s.index("/data/b.txt")
1)";

constexpr const char* kCountDoc = R"(count(self, path)
--

How often a path is in the sequence. Looked up as index does; where the path is that of a folder as
well, what is in the folder is looked through.

>>> s.count("/data/b.txt"), s.count("/data")
(1, 0))";

}  // namespace

void bindPathSequence(py::module_& module) {
    py::class_<PathSequence> sequence(module, "PathSequence", py::custom_type_setup(setSlots),
                                      kSequenceDoc);
    sequence.attr("__module__") = "zqpaths";
    // PathSet[str] and PathSet[bytes] are for type checkers, as list[str] is.
    sequence.attr("__class_getitem__") = py::reinterpret_steal<py::object>(
        PyClassMethod_New(reinterpret_cast<PyObject*>(&Py_GenericAliasType)));
    sequence.def("__iter__", [](const PathSequence& paths) { return PathIterator(paths, false); });
    sequence.def("__reversed__",
                 [](const PathSequence& paths) { return PathIterator(paths, true); });
    sequence.def("__contains__", &contains, py::arg("path"));
    sequence.def("take", &take, kTakeDoc, py::arg("indices"), py::kw_only(),
                 py::arg("arrow_like") = false);
    sequence.def("index", &indexOf, kIndexDoc, py::arg("path"), py::arg("start") = 0,
                 py::arg("stop") = py::none());
    sequence.def("count", &countOf, kCountDoc, py::arg("path"));
    sequence.def("_positions", &positionsBetween, py::arg("start"), py::arg("stop"));
}

}  // namespace zqpaths::python
