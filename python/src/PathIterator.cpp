#include "python/src/PathIterator.hpp"

#include <algorithm>
#include <utility>

#include "python/src/Slots.hpp"

namespace zqpaths::python {
namespace {

// Whoever wants the first path only waits for few; whoever goes through all asks seldom.
constexpr std::uint64_t kFirstPiece = 32;
constexpr std::uint64_t kLargestPiece = 8192;

PyObject* nextOf(PyObject* self) {
    return inSlot<PathIterator>(self, static_cast<PyObject*>(nullptr),
                                [](PathIterator& iterator) { return iterator.next(); });
}

}  // namespace

PathIterator::PathIterator(PathSequence paths, bool isBackwards)
    : paths_(std::move(paths)),
      isBackwards_(isBackwards),
      pieceSize_(kFirstPiece),
      reading_(std::make_unique<std::mutex>()) {}

std::uint64_t PathIterator::left() const {
    return paths_.size() - readCount_ +
           static_cast<std::uint64_t>(PyList_GET_SIZE(piece_.ptr()) - nextOfPiece_);
}

PyObject* PathIterator::next() {
    while (!hasReadPath()) {
        if (readCount_ == paths_.size()) return nullptr;
        readPiece();
    }
    // The piece lets go of its paths one by one, so that memory is theirs again.
    PyObject* path = PyList_GET_ITEM(piece_.ptr(), nextOfPiece_);
    Py_INCREF(Py_None);
    PyList_SET_ITEM(piece_.ptr(), nextOfPiece_++, Py_None);
    return path;
}

void PathIterator::readPiece() {
    std::unique_lock lock(*reading_, std::try_to_lock);
    if (!lock) {
        const py::gil_scoped_release unlocked;
        lock.lock();
    }
    if (hasReadPath()) return;  // another thread has read it
    const std::uint64_t count = std::min(pieceSize_, paths_.size() - readCount_);
    const std::uint64_t first = readCount_;
    const std::uint64_t last = paths_.size() - 1 - first;
    py::list piece =
        paths_.list(count, [&](std::uint64_t i) { return isBackwards_ ? last - i : first + i; });
    readCount_ += count;
    pieceSize_ = std::min(2 * pieceSize_, kLargestPiece);
    piece_ = std::move(piece);
    nextOfPiece_ = 0;
}

void bindPathIterator(py::module_& module) {
    const auto setSlots = [](PyHeapTypeObject* type) {
        refuseMaking(type);
        type->ht_type.tp_iter = PyObject_SelfIter;
        type->ht_type.tp_iternext = nextOf;
    };
    py::class_<PathIterator> iterator(module, "PathIterator", py::custom_type_setup(setSlots),
                                      "An iterator of the paths of a sequence.");
    iterator.attr("__module__") = "zqpaths";
    iterator.def("__length_hint__", &PathIterator::left);
}

}  // namespace zqpaths::python
