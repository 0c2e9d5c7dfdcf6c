#pragma once
// A set that all ranks of a team read.

#include <string>

#include "tools/zqpaths-mpi/communication/Team.hpp"
#include "zqpaths/PathSet.hpp"

namespace zqpaths::program::mpi {

/// Opens the set on all ranks, which all call it. What is there of a set of sets is enough if
/// `isPartial`; rank 0 tells what is missing, as openSet does. Throws Error as PathSet::open does;
/// on rank 0 Failure kFailed if another rank has opened other contents, so that its numbers would
/// mean other paths (a copy that is out of date, or a set that was replaced meanwhile), or has
/// other files of a set of sets, so that paths would be missing in silence.
PathSet openOnAll(Team& team, const std::string& file, bool isPartial);

}  // namespace zqpaths::program::mpi
