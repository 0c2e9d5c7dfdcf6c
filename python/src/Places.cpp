#include "python/src/Places.hpp"

#include <cstddef>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include "python/src/Errors.hpp"

namespace zqpaths::python {
namespace {

[[noreturn]] void refusePlace(const std::string& index, std::uint64_t size) {
    throw py::index_error("position " + index + " is out of range, there are " +
                          std::to_string(size) + " paths");
}

/// Places of numbers that lie in memory, each `stride` bytes after the one before.
template <class Number>
std::vector<std::uint64_t> placesIn(const Py_buffer& numbers, std::uint64_t size) {
    std::vector<std::uint64_t> places(static_cast<std::size_t>(numbers.shape[0]));
    const auto* next = static_cast<const char*>(numbers.buf);
    for (std::uint64_t& place : places) {
        Number number{};
        std::memcpy(&number, next, sizeof number);
        next += numbers.strides[0];
        if constexpr (std::is_same_v<Number, std::uint64_t>) {
            if (number >= size) refusePlace(std::to_string(number), size);
            place = number;
        } else {
            place = placeAt(number, size);
        }
    }
    return places;
}

template <class Signed>
std::vector<std::uint64_t> placesIn(const Py_buffer& numbers, bool isSigned, std::uint64_t size) {
    if (isSigned) return placesIn<Signed>(numbers, size);
    return placesIn<std::make_unsigned_t<Signed>>(numbers, size);
}

/// Memory that an object shows; nothing where it shows none.
class ShownMemory {
public:
    explicit ShownMemory(py::handle object) {
        if (PyObject_CheckBuffer(object.ptr()) == 0) return;
        isShown_ = PyObject_GetBuffer(object.ptr(), &view_, PyBUF_STRIDES | PyBUF_FORMAT) == 0;
        if (!isShown_) PyErr_Clear();  // it may still be an iterable
    }
    ShownMemory(const ShownMemory&) = delete;
    ShownMemory& operator=(const ShownMemory&) = delete;
    ~ShownMemory() {
        if (isShown_) PyBuffer_Release(&view_);
    }

    explicit operator bool() const noexcept { return isShown_; }
    const Py_buffer& operator*() const noexcept { return view_; }

private:
    Py_buffer view_{};
    bool isShown_ = false;
};

/// Places of a row of integers in memory; nothing if it is not one, or not in this machine's order
/// of bytes.
std::optional<std::vector<std::uint64_t>> placesInArray(const Py_buffer& array,
                                                        std::uint64_t size) {
    std::string_view format = array.format == nullptr ? "B" : array.format;
    if (!format.empty() && std::string_view("@=<").find(format[0]) != std::string_view::npos)
        format.remove_prefix(1);
    if (array.ndim != 1 || format.size() != 1) return std::nullopt;
    if (format == "?")
        throw py::type_error("positions are integers; those of a mask are numpy.flatnonzero(mask)");
    const bool isSigned = std::string_view("bhilqn").find(format[0]) != std::string_view::npos;
    const bool isUnsigned = std::string_view("BHILQN").find(format[0]) != std::string_view::npos;
    if (!isSigned && !isUnsigned) return std::nullopt;
    switch (array.itemsize) {
        case 1:
            return placesIn<std::int8_t>(array, isSigned, size);
        case 2:
            return placesIn<std::int16_t>(array, isSigned, size);
        case 4:
            return placesIn<std::int32_t>(array, isSigned, size);
        case 8:
            return placesIn<std::int64_t>(array, isSigned, size);
        default:
            return std::nullopt;
    }
}

}  // namespace

std::uint64_t placeAt(std::int64_t index, std::uint64_t size) {
    const auto place = static_cast<std::uint64_t>(index) + (index < 0 ? size : 0);
    if (place >= size) refusePlace(std::to_string(index), size);
    return place;
}

std::uint64_t placeOf(py::handle index, std::uint64_t size) {
    const Py_ssize_t number = PyNumber_AsSsize_t(index.ptr(), PyExc_IndexError);
    if (number == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
    return placeAt(number, size);
}

SlicedPlaces slicedPlaces(py::handle slice, std::uint64_t size) {
    Py_ssize_t start = 0;
    Py_ssize_t stop = 0;
    Py_ssize_t step = 0;
    if (PySlice_Unpack(slice.ptr(), &start, &stop, &step) != 0) throw py::error_already_set();
    const Py_ssize_t count =
        PySlice_AdjustIndices(static_cast<Py_ssize_t>(size), &start, &stop, step);
    return {start, step, static_cast<std::uint64_t>(count)};
}

std::vector<std::uint64_t> placesOf(py::handle indices, std::uint64_t size) {
    if (const ShownMemory memory(indices); memory)
        if (auto places = placesInArray(*memory, size)) return std::move(*places);
    std::vector<std::uint64_t> places;
    const Py_ssize_t hint = PyObject_LengthHint(indices.ptr(), 0);
    if (hint < 0) throw py::error_already_set();
    places.reserve(static_cast<std::size_t>(hint));
    for (const py::handle index : py::iter(indices)) places.push_back(placeOf(index, size));
    return places;
}

std::uint64_t naturalNumber(py::handle argument, const char* name) {
    const auto index = py::reinterpret_steal<py::object>(PyNumber_Index(argument.ptr()));
    if (!index) throw py::error_already_set();
    const std::uint64_t number = PyLong_AsUnsignedLongLong(index.ptr());
    if (number == std::numeric_limits<std::uint64_t>::max() && PyErr_Occurred() != nullptr) {
        PyErr_Clear();
        refuse(std::string(name) + " " + std::string(py::str(index)) +
               " is not between 0 and 2**64 - 1");
    }
    return number;
}

}  // namespace zqpaths::python
