#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"

#include <string>
#include <vector>

#include "tools/zqpaths/arguments/Arguments.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program::mpi {
namespace {

constexpr const char* kName = "zqpaths-mpi";

const std::vector<std::string> kDescription{
    "MPI runs the program as many processes, the ranks, on one machine or on many that share a "
    "file "
    "system: mpiexec -n 4 zqpaths-mpi find data.zqs '*.jpg'. Without mpiexec there is one rank. "
    "All "
    "ranks are given the same arguments. They deal the work among themselves, and what they print "
    "is "
    "what one process prints, in the order of the numbers.",
    "A rank uses all processors that it may run on. So one rank a machine is enough; where there "
    "are "
    "more, mpiexec binds each to its share.",
    "Rank 0 prints, and mpiexec hands on what it prints: names come as their bytes on a terminal, "
    "too, and progress, of all ranks in one line, is shown where --progress=line asks for it. "
    "Standard input is that of rank 0; MPICH breaks it off where more comes than is read at once, "
    "so "
    "that long lists are better named.",
    "The status of rank 0 is that of the job, the other ranks end with 0. mpiexec ends with the "
    "same "
    "status; that of Open MPI says so, where it is not 0. When a rank fails, its message is told "
    "once, "
    "with the rank before it, and all ranks end."};

ProgramTable tableWithoutHelp(Team& team) {
    return {.name = kName,
            .version = ZQ_VERSION,
            .summary = "make and search very large sets of file paths with many processes",
            .verbs = {indexVerb(team), findVerb(team), numberVerb(team), sampleVerb(team),
                      shuffleVerb(team), verifyVerb(team), diffVerb(team),
                      documentVerb(kName, [&team] { return teamTable(team); })},
            .description = kDescription};
}

}  // namespace

ProgramTable teamTable(Team& team) {
    ProgramTable table = tableWithoutHelp(team);
    table.verbs.push_back(helpVerb(
        kName, [&team] { return teamTable(team); }, namesOfVerbs(table)));
    return table;
}

}  // namespace zqpaths::program::mpi
