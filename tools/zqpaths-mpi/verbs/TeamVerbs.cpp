#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"

#include "tools/zqpaths/arguments/Arguments.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program::mpi {
namespace {

constexpr const char* kName = "zqpaths-mpi";

constexpr const char* kDescription =
    "The program is run by MPI as many processes, the ranks, on one machine or on many that share "
    "a "
    "file system: mpiexec -n 4 zqpaths-mpi find data.zqs '*.jpg'. All ranks are given the same "
    "arguments. They deal the work among themselves, and what they print is what one process "
    "prints. "
    "Rank 0 reads standard input, prints, and shows the progress of all in one line. "
    "The status of rank 0 is that of the job, the other ranks end with 0; mpiexec ends with the "
    "status "
    "of rank 0 then, and Open MPI adds a message of its own if that is not 0. "
    "When a rank fails, its message is told once, with the rank before it, and all ranks end. "
    "Without mpiexec there is one rank.";

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
