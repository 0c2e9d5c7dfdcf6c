// The module _zqpaths, which the package zqpaths is made of.

#include <pybind11/pybind11.h>

#include "python/src/Errors.hpp"
#include "python/src/Indexing.hpp"
#include "python/src/Merging.hpp"
#include "python/src/OpenedPathSet.hpp"
#include "python/src/PathIterator.hpp"
#include "python/src/PathSequence.hpp"
#include "python/src/Selection.hpp"
#include "python/src/Writer.hpp"

PYBIND11_MODULE(_zqpaths, module) {
    // The texts of the documentation say more than types that are made of C++.
    pybind11::options options;
    options.disable_function_signatures();
    zqpaths::python::translateErrors();
    zqpaths::python::bindPathIterator(module);
    zqpaths::python::bindPathSequence(module);
    zqpaths::python::bindPathSet(module);
    zqpaths::python::bindSelection(module);
    zqpaths::python::bindWriter(module);
    zqpaths::python::bindIndexing(module);
    zqpaths::python::bindMerging(module);
    module.attr("__version__") = ZQ_VERSION;
}
