#pragma once
// The verbs of zqpaths-mpi, one source file each with all that is the verb's own: its row of the
// table and its work. All ranks run the verb that is given; what it prints is printed by rank 0,
// which also gives the status of the job. Each verb keeps the team, which outlives it.

#include "tools/zqpaths-mpi/communication/Team.hpp"
#include "tools/zqpaths/arguments/Verb.hpp"

namespace zqpaths::program::mpi {

Verb diffVerb(Team& team);
Verb findVerb(Team& team);
Verb indexVerb(Team& team);
Verb numberVerb(Team& team);
Verb sampleVerb(Team& team);
Verb shuffleVerb(Team& team);
Verb verifyVerb(Team& team);

/// All of them, in the order in which people read of them.
ProgramTable teamTable(Team& team);

}  // namespace zqpaths::program::mpi
