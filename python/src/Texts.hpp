#pragma once
// Paths as Python has them, and as the library does.
//
//     py::object path = pathObject("/data/a.txt", PathType::kText);  // str
//     GivenPath given(argument);                                     // str, bytes or os.PathLike
//     set.numberOf(given.text());
//
// A str stands for the bytes that os.fsencode makes of it, and back by os.fsdecode, so that every
// path can be a str and opens the file that it names.
//
// Threads: all of it with the interpreter's lock, save for TextList, which belongs to one thread.

#include <pybind11/pybind11.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zqpaths::python {

namespace py = pybind11;

enum class PathType { kText, kBytes };

/// str or bytes. Throws py::error_already_set for lack of memory. O(bytes).
py::object pathObject(std::string_view path, PathType type);

/// A path that came as an argument. Keeps what the bytes belong to.
class GivenPath {
public:
    /// Throws py::error_already_set: TypeError for what is no path, UnicodeEncodeError for a str
    /// that stands for no bytes.
    explicit GivenPath(py::handle argument);

    /// Nothing where the constructor would throw one of these: no set has such a path.
    static std::optional<GivenPath> lookedFor(py::handle argument);

    std::string_view text() const noexcept { return text_; }

private:
    py::object holder_;
    std::string_view text_;
};

/// Texts, kept end to end.
class TextList {
public:
    void reserve(std::size_t count, std::size_t byteSize) {
        ends_.reserve(count);
        bytes_.reserve(byteSize);
    }
    void append(std::string_view text) {
        bytes_ += text;
        ends_.push_back(bytes_.size());
    }
    void clear() noexcept {
        bytes_.clear();
        ends_.clear();
    }

    std::size_t size() const noexcept { return ends_.size(); }
    std::size_t byteSize() const noexcept { return bytes_.size(); }
    std::string_view operator[](std::size_t i) const noexcept {
        const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
        return std::string_view(bytes_).substr(begin, ends_[i] - begin);
    }

private:
    std::string bytes_;
    std::vector<std::size_t> ends_;
};

}  // namespace zqpaths::python
