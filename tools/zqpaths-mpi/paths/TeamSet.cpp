#include "tools/zqpaths-mpi/paths/TeamSet.hpp"

#include <utility>

#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"

namespace zqpaths::program::mpi {
namespace {

/// What all ranks must see alike.
std::string stateOf(const PathSet& set) {
    MessageWriter writer;
    writer.number(set.size());
    writer.number(set.fingerprint());
    return writer.take();
}

}  // namespace

PathSet openOnAll(Team& team, const std::string& file) {
    PathSet set = openSet(file);
    const std::string state = stateOf(set);
    const auto compare = [&](Member& member) {
        if (member.rank() != 0) return member.send(0, state);
        for (int other = 1; other < member.size(); ++other)
            if (member.receive(other) != state)
                throw failureAt(file, "is another set on rank " + std::to_string(other));
    };
    if (team.size() > 1) team.run({.work = compare});
    return set;
}

}  // namespace zqpaths::program::mpi
