#include "python/src/Merging.hpp"

#include <string>
#include <vector>

#include "python/src/Errors.hpp"
#include "python/src/OpenedPathSet.hpp"
#include "python/src/Texts.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"

namespace zqpaths::python {
namespace {

SetManifestWriter::Mode makingOf(const std::string& mode) {
    if (mode == "w") return SetManifestWriter::Mode::kReplace;
    if (mode == "x") return SetManifestWriter::Mode::kCreate;
    refuse("mode '" + mode + "' is neither 'w' nor 'x'");
}

std::vector<std::string> namesIn(py::handle files) {
    if (PyUnicode_Check(files.ptr()) || PyBytes_Check(files.ptr()))
        throw py::type_error("merge takes names of files, not one");
    std::vector<std::string> names;
    for (const py::handle file : py::iter(files)) names.emplace_back(GivenPath(file).text());
    return names;
}

OpenedPathSet merge(py::handle files, const py::object& file, const std::string& mode) {
    const SetManifestWriter::Mode making = makingOf(mode);
    const std::vector<std::string> names = namesIn(files);
    const std::string manifest(GivenPath(file).text());
    // What is refused about one of the files has its name, so that this one is given where it is
    // about the manifest alone.
    SetManifestWriter writer = naming(file, [&] {
        const py::gil_scoped_release unlocked;
        return SetManifestWriter(manifest, making);
    });
    {
        const py::gil_scoped_release unlocked;
        for (const std::string& name : names) writer.addSet(name);
    }
    naming(file, [&] {
        const py::gil_scoped_release unlocked;
        writer.commit();
    });
    return openedSet(file, PathType::kText);
}

constexpr const char* kMergeDoc = R"(merge(files, file, *, mode="x")
--

Makes a set of sets, which has the paths of all these set files in their order, and opens it: a
PathSet. It is a small file that names the others, and takes no longer than to open each of them.

>>> with zqpaths.Writer("more.zqp") as writer:
...     writer.add("/more/d.txt")
>>> everything = zqpaths.merge(["data.zqp", "more.zqp"], "all.zqs")
>>> len(everything), everything[3]
(4, '/more/d.txt')

The set files stay where they are; they are named relative to the folder of the new one, so that all of
them together can be moved. One that is changed later raises Error when it is needed. A set of sets
among them stands for the files that it names.

mode is "x" to refuse a file that is there, "w" to replace a set. Raises what open raises for each of
the files, and ExistsError; there is no new file then.)";

}  // namespace

void bindMerging(py::module_& module) {
    module.def("merge", &merge, kMergeDoc, py::arg("files"), py::arg("file"), py::kw_only(),
               py::arg("mode") = "x");
}

}  // namespace zqpaths::python
