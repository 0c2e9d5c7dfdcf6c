# The program for many machines, zqpaths-mpi. ZQ_MPI is on where an MPI is found, and what is on is
# required. Where several are installed, MPI_CXX_COMPILER chooses: mpicxx.mpich, mpicxx.openmpi.
set(MPI_CXX_SKIP_MPICXX ON)  # its old classes for C++
find_package(MPI QUIET COMPONENTS CXX)
option(ZQ_MPI "build the program zqpaths-mpi" ${MPI_CXX_FOUND})
if(NOT ZQ_MPI)
    return()
endif()
find_package(MPI REQUIRED COMPONENTS CXX)
if(NOT ZQ_PROGRAM)
    message(FATAL_ERROR "zqpaths-mpi is made of parts of zqpaths: ZQ_MPI needs ZQ_PROGRAM")
endif()

# What starts programs of this MPI: Debian has it under the name of the MPI, as the compiler.
get_filename_component(mpi_name "${MPI_CXX_COMPILER}" LAST_EXT)
find_program(ZQ_MPIEXEC NAMES mpiexec${mpi_name} mpiexec REQUIRED)
