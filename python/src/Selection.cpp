#include "python/src/Selection.hpp"

#include <pybind11/numpy.h>

#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "python/src/Errors.hpp"
#include "python/src/OpenedPathSet.hpp"
#include "python/src/Slots.hpp"

namespace zqpaths::python {
namespace {

/// The positions as an array that belongs to the selection.
py::object positions(const py::object& self) {
    const auto& selection = self.cast<const Selection&>();
    py::object array;
    if (const auto* listed = std::get_if<ListedPaths>(selection.choice().get())) {
        const std::vector<std::int64_t>& values = listed->positions();
        array =
            py::array_t<std::int64_t>(static_cast<py::ssize_t>(values.size()), values.data(), self);
    } else {
        array = selection.positions(0, selection.size());
    }
    array.attr("setflags")(false);
    return array;
}

std::string describedSelection(const Selection& selection) {
    return "<zqpaths.Selection of " + std::to_string(selection.size()) + " paths in " +
           std::string(py::repr(selection.source().attr("file"))) + ">";
}

// --- Pickling: the set, and how its paths were chosen.

py::object listed(const py::object& source, const py::bytes& positions) {
    const auto& set = source.cast<const OpenedPathSet&>();
    const std::string_view bytes = positions;
    std::vector<std::int64_t> values(bytes.size() / sizeof(std::int64_t));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(std::int64_t));
    if (!values.empty() && static_cast<std::uint64_t>(values.back()) >= set.size())
        refuse("the positions are not those of the set");
    return py::cast(Selection(source, set, ListedPaths(std::move(values))));
}

struct Reduction {
    const py::object& source;
    py::module_ module = py::module_::import("zqpaths._pickling");

    py::tuple operator()(const AllPaths& /*all*/) const {
        return py::make_tuple(module.attr("dealt"), py::make_tuple(source, 0, 1));
    }
    py::tuple operator()(const ListedPaths& paths) const {
        const auto* values = reinterpret_cast<const char*>(paths.positions().data());
        return py::make_tuple(
            module.attr("listed"),
            py::make_tuple(source, py::bytes(values, paths.size() * sizeof(std::int64_t))));
    }
    py::tuple operator()(const DealtPaths& paths) const {
        return py::make_tuple(module.attr("dealt"),
                              py::make_tuple(source, paths.reader.rank, paths.reader.of));
    }
    py::tuple operator()(const ShuffledPaths& paths) const {
        return py::make_tuple(
            module.attr("shuffled"),
            py::make_tuple(source, paths.reader.rank, paths.reader.of, paths.seed, paths.epoch));
    }
};

constexpr const char* kSelectionDoc =
    R"(Some paths of a set: what was found, or the share of a reader.

It holds positions of the set, or how to compute them, and reads the paths when they are asked for.
It can be pickled as the set can.

>>> found = s.find(".txt")
>>> len(found), found[1:], found.positions
(3, ['/data/b.txt', '/data/b/c.txt'], array([0, 1, 2])))";

constexpr const char* kPositionsDoc =
    R"(The positions of the paths in the set: a numpy array of int64, which cannot be written to.)";

}  // namespace

void bindSelection(py::module_& module) {
    py::class_<Selection, PathSequence> selection(
        module, "Selection", py::custom_type_setup(refuseMaking), kSelectionDoc);
    selection.attr("__module__") = "zqpaths";
    selection.def_property_readonly("positions", &positions, kPositionsDoc);
    selection.def("__repr__", &describedSelection);
    selection.def("__reduce__", [](const Selection& self) {
        return std::visit(Reduction{self.source()}, *self.choice());
    });
    module.def("_listed", &listed);
}

}  // namespace zqpaths::python
