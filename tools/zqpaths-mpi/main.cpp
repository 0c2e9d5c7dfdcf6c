// Runs what the arguments ask for on all ranks of the job, and turns whatever goes wrong on any of
// them into one message and an exit status, which rank 0 gives.

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <exception>
#include <optional>
#include <string>

#include "tools/zqpaths-mpi/communication/Mailbox.hpp"
#include "tools/zqpaths-mpi/communication/Team.hpp"
#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"
#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/StandardStreams.hpp"
#include "tools/zqpaths/arguments/Arguments.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/StandardOutput.hpp"
#include "tools/zqpaths/output/Terminal.hpp"

namespace zqpaths::program::mpi {
namespace {

/// How the verb ended on this rank.
struct Ending {
    ExitStatus status = ExitStatus::kDone;
    std::optional<Failure> failure{};
    bool isPipeClosed = false;  // a failure that nobody is told of
};

/// The ranks of a job print once: rank 0. What it prints is handed on by mpiexec, for which that of
/// Open MPI gives it a terminal that nobody looks at.
void prepareStandardOutput(const Team& team) {
    if (environmentValue("OMPI_COMM_WORLD_SIZE")) takeOutputForHandedOn();
    if (team.isFirst()) return;
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0)
        throw Failure(ExitStatus::kFailed, "/dev/null cannot be opened");
    close(nowhere);
}

/// A program that another MPI's mpiexec has started is as many jobs of one rank, each of which
/// would do it all.
void requireOwnMpiexec(const Team& team) {
    if (team.size() > 1) return;
    for (const char* const variable : {"PMI_SIZE", "OMPI_COMM_WORLD_SIZE"}) {
        const std::optional<std::string> size = environmentValue(variable);
        if (size && *size != "1")
            throw Failure(ExitStatus::kFailed,
                          "this program was built with another MPI than the one whose mpiexec has "
                          "started it");
    }
}

Ending runVerb(Team& team, int argumentCount, char** arguments) {
    try {
        requireOwnMpiexec(team);
        prepareStandardOutput(team);
        watchForCutShortFiles();
        return {parseArguments(teamTable(team), argumentCount, arguments)()};
    } catch (const Stopped&) {
        return {};
    } catch (const ClosedPipe&) {
        const Failure failure(ExitStatus::kFailed, "the reader of standard output has gone");
        return {failure.status(), failure, true};
    } catch (const std::exception&) {
        const Failure failure = failureOf(std::current_exception());
        return {failure.status(), failure};
    }
}

/// Rank 0 gives the status of the job.
Ending runOnTeam(int argumentCount, char** arguments) {
    Team team;
    const std::string program = teamTable(team).name;
    nameTeller(team.isFirst() ? program : program + ": rank " + std::to_string(team.rank()));
    Ending ending = runVerb(team, argumentCount, arguments);
    if (team.isFirst() && ending.failure && !ending.isPipeClosed) tell(ending.failure->what());
    const std::optional<Failure> other = team.finish(ending.failure);
    if (!team.isFirst()) return {};
    if (other) {
        tell(other->what());
        ending.status = other->status();
    }
    return ending;
}

ExitStatus run(int argumentCount, char** arguments) {
    try {
        reserveStandardStreams();
        Ending ending;
        {
            const MpiSession session;
            try {
                ending = runOnTeam(argumentCount, arguments);
            } catch (const std::exception&) {
                // The others cannot be told any more in an orderly way.
                const Failure failure = failureOf(std::current_exception());
                tell(failure.what());
                Mailbox::abort(static_cast<int>(failure.status()));
            }
        }
        if (ending.isPipeClosed) endByClosedPipe();
        return ending.status;
    } catch (const std::exception&) {
        const Failure failure = failureOf(std::current_exception());
        tell(failure.what());
        return failure.status();
    }
}

}  // namespace
}  // namespace zqpaths::program::mpi

int main(int argumentCount, char** arguments) {
    // A closed pipe and the limit of a file's size are seen by whoever writes into them.
    for (const int signal : {SIGPIPE, SIGXFSZ}) static_cast<void>(std::signal(signal, SIG_IGN));
    return static_cast<int>(zqpaths::program::mpi::run(argumentCount, arguments));
}
