#include "tools/zqpaths-mpi/paths/TeamSet.hpp"

#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"

namespace zqpaths::program::mpi {
namespace {

/// Rank 0 alone tells what is missing.
PathSet openHere(const Team& team, const std::string& file, bool isPartial) {
    if (team.isFirst() || !isPartial) return openSet(file, isPartial);
    nameWhatIsRead(printablePath(file));
    return PathSet::openPartial(file);
}

/// What all ranks must see alike: the paths, and which of them are there.
struct SetState {
    std::string contents;
    std::string missing;
};

SetState stateOf(const PathSet& set) {
    MessageWriter contents;
    contents.number(set.size());
    contents.fixed(set.fingerprint());
    MessageWriter missing;
    for (const PathSet::Missing& range : set.missing()) {
        missing.number(range.firstNumber);
        missing.number(range.lastNumber);
    }
    return {contents.take(), missing.take()};
}

}  // namespace

PathSet openOnAll(Team& team, const std::string& file, bool isPartial) {
    PathSet set = openHere(team, file, isPartial);
    if (team.size() == 1) return set;
    const SetState state = stateOf(set);
    team.run({.work = [&](Member& member) {
        if (member.rank() != 0) {
            member.send(0, state.contents);
            member.send(0, state.missing);
            return;
        }
        for (int other = 1; other < member.size(); ++other) {
            if (member.receive(other) != state.contents)
                throw failureAt(file, "is another set on rank " + std::to_string(other));
            if (member.receive(other) != state.missing)
                throw failureAt(file, "has other files that are missing on rank " +
                                          std::to_string(other) + " than on rank 0");
        }
    }});
    return set;
}

}  // namespace zqpaths::program::mpi
