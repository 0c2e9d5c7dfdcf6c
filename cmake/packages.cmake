# `cpack -G DEB` makes Debian packages of the components of installation.cmake, but for documents and
# host. scripts/package does it all.
#
# CPack makes the archives. What Debian wants besides (dependencies by dpkg-shlibdeps, the symbols of
# the library, changelog and copyright) is added by debian/finish.cmake, between installation and
# archives: CPack's own way to dependencies would also have the library call ldconfig by a script,
# where Debian has a trigger for that.

# A package holds what is below /usr, with folders and completions where Debian has them.
if(NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR})
set(CPACK_PACKAGE_CONTACT
    "The zqcompressedpaths founders <maintainers@users.noreply.c-seed-b08b0507.example>")
set(CPACK_SET_DESTDIR ON)  # what is installed learns that its prefix is /usr
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL library development)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SOURCE zqcompressedpaths)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian/finish.cmake)
set(debian ${CMAKE_CURRENT_LIST_DIR}/debian)
set(made ${PROJECT_BINARY_DIR}/debian)  # by finish.cmake and here

set(about "A set of paths in a file takes a few bytes a path, is mapped and read at
once by any number of processes, gives any path by its number, and finds
paths by texts, patterns and folders.")

set(library_package libzqpaths${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
    "very large sets of file paths in little memory - shared library
${about}
.
This package holds what programs on the library need to run.")
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA
    ${debian}/library/triggers ${made}/library/shlibs ${made}/library/symbols)
file(WRITE ${made}/library/shlibs
    "libzqpaths ${PROJECT_VERSION_MAJOR} ${library_package} (>= ${PROJECT_VERSION})\n")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzqpaths-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS library)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "very large sets of file paths in little memory - development files
${about}
.
This package holds headers, and what CMake and pkg-config need to find the
library.")

if(ZQ_PROGRAM)
    list(APPEND CPACK_COMPONENTS_ALL program)
    set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME zqpaths)
    set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION utils)
    set(CPACK_COMPONENT_PROGRAM_DEPENDS library)
    set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
        "keep very large sets of file paths in little space
${about}
.
This package holds the program zqpaths, which makes, reads and searches such
sets.")
endif()

if(TARGET zqpaths-mpi)
    list(APPEND CPACK_COMPONENTS_ALL mpi)
    set(CPACK_DEBIAN_MPI_PACKAGE_NAME zqpaths-mpi)
    set(CPACK_DEBIAN_MPI_PACKAGE_SECTION utils)
    set(CPACK_COMPONENT_MPI_DEPENDS library)
    set(CPACK_DEBIAN_MPI_PACKAGE_RECOMMENDS mpich)
    set(CPACK_DEBIAN_MPI_PACKAGE_SUGGESTS zqpaths)
    set(CPACK_DEBIAN_MPI_DESCRIPTION
        "make and search very large sets of file paths on many machines
${about}
.
This package holds the program zqpaths-mpi, which mpiexec runs as many
processes that make a set of many files together, and search it.")
endif()

if(TARGET _zqpaths)
    list(APPEND CPACK_COMPONENTS_ALL python)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-zqpaths)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    set(CPACK_COMPONENT_PYTHON_DEPENDS library)
    # The module is built for one minor version of Python.
    math(EXPR next_minor "${Python_VERSION_MINOR} + 1")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
        "python3 (>= 3.${Python_VERSION_MINOR}~), python3 (<< 3.${next_minor})")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS python3-numpy)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS python3-distributed)
    set(CPACK_DEBIAN_PYTHON_DESCRIPTION
        "very large sets of file paths in little memory - Python module
${about}
.
This package holds the module zqpaths for Python.")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${debian}/python/postinst ${debian}/python/prerm)
endif()

include(CPack)
