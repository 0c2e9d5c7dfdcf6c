# The Python module, and the folder that it is installed in. ZQ_PYTHON is on where Python and pybind11
# are found, and what is on is required.
find_package(Python 3.11 QUIET COMPONENTS Interpreter Development.Module)
find_package(pybind11 2.10 QUIET CONFIG)
if(Python_FOUND AND pybind11_FOUND)
    set(python_is_there ON)
else()
    set(python_is_there OFF)
endif()
option(ZQ_PYTHON "build the Python module" ${python_is_there})
if(NOT ZQ_PYTHON)
    return()
endif()
find_package(Python 3.11 REQUIRED COMPONENTS Interpreter Development.Module)
find_package(pybind11 2.10 REQUIRED CONFIG)

# Python itself looks into these folders of the prefixes /usr and /usr/local on Debian; elsewhere, into
# what PYTHONPATH names.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(python_dir lib/python3/dist-packages)
else()
    set(python_dir lib/python${Python_VERSION_MAJOR}.${Python_VERSION_MINOR}/dist-packages)
endif()
set(ZQ_PYTHON_DIR ${python_dir} CACHE STRING "folder of Python packages, relative to the prefix")
