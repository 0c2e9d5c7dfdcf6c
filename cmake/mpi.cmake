# The program for many machines, zqpaths-mpi. ZQ_MPI is on where an MPI is found and zqpaths is built, of
# which it is made, and what is on is required. Where several are installed, MPI_CXX_COMPILER chooses: mpicxx.mpich, mpicxx.openmpi.
set(MPI_CXX_SKIP_MPICXX ON)  # its old classes for C++
find_package(MPI QUIET COMPONENTS CXX)
set(mpi_is_usable OFF)
if(MPI_CXX_FOUND AND ZQ_PROGRAM)  # the two share most of what they are made of
    set(mpi_is_usable ON)
endif()
option(ZQ_MPI "build the program zqpaths-mpi" ${mpi_is_usable})
if(NOT ZQ_MPI)
    return()
endif()
find_package(MPI REQUIRED COMPONENTS CXX)
if(NOT ZQ_PROGRAM)
    message(FATAL_ERROR "zqpaths-mpi is made of what zqpaths is made of: ZQ_MPI needs ZQ_PROGRAM")
endif()

# What starts programs of this MPI: Debian has it under the name of the MPI, as the compiler.
get_filename_component(mpi_name "${MPI_CXX_COMPILER}" LAST_EXT)
find_program(ZQ_MPIEXEC NAMES mpiexec${mpi_name} mpiexec REQUIRED)
