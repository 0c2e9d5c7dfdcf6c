#include "python/src/Texts.hpp"

#include <cstdint>
#include <cstring>
#include <utility>

namespace zqpaths::python {
namespace {

/// Takes over a new reference; throws what Python has raised if there is none.
py::object owned(PyObject* object) {
    if (object == nullptr) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(object);
}

bool isAscii(std::string_view text) noexcept {
    constexpr std::uint64_t kHighBits = 0x8080808080808080;
    std::uint64_t seen = 0;
    std::size_t i = 0;
    for (; i + sizeof seen <= text.size(); i += sizeof seen) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, text.data() + i, sizeof bytes);
        seen |= bytes;
    }
    for (; i < text.size(); ++i) seen |= static_cast<unsigned char>(text[i]);
    return (seen & kHighBits) == 0;
}

}  // namespace

py::object pathObject(std::string_view path, PathType type) {
    const auto size = static_cast<Py_ssize_t>(path.size());
    if (type == PathType::kBytes) return owned(PyBytes_FromStringAndSize(path.data(), size));
    // Nearly all paths are ASCII, and need no decoding.
    if (!isAscii(path)) return owned(PyUnicode_DecodeFSDefaultAndSize(path.data(), size));
    constexpr Py_UCS4 kMaxAscii = 127;
    py::object text = owned(PyUnicode_New(size, kMaxAscii));
    std::memcpy(PyUnicode_1BYTE_DATA(text.ptr()), path.data(), path.size());
    return text;
}

GivenPath::GivenPath(py::handle argument) : holder_(owned(PyOS_FSPath(argument.ptr()))) {
    if (PyUnicode_Check(holder_.ptr())) {
        if (PyUnicode_READY(holder_.ptr()) != 0) throw py::error_already_set();
        if (PyUnicode_IS_ASCII(holder_.ptr())) {
            text_ = {static_cast<const char*>(PyUnicode_DATA(holder_.ptr())),
                     static_cast<std::size_t>(PyUnicode_GET_LENGTH(holder_.ptr()))};
            return;
        }
        holder_ = owned(PyUnicode_EncodeFSDefault(holder_.ptr()));
    }
    text_ = {PyBytes_AS_STRING(holder_.ptr()),
             static_cast<std::size_t>(PyBytes_GET_SIZE(holder_.ptr()))};
}

std::optional<GivenPath> GivenPath::lookedFor(py::handle argument) {
    try {
        return GivenPath(argument);
    } catch (py::error_already_set& error) {
        if (error.matches(PyExc_TypeError) || error.matches(PyExc_UnicodeEncodeError))
            return std::nullopt;
        throw;
    }
}

}  // namespace zqpaths::python
