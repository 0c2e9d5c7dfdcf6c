// Runs what the arguments ask for, and turns whatever goes wrong into a message and an exit status.

#include <csignal>
#include <exception>

#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/StandardStreams.hpp"
#include "tools/zqpaths/arguments/Arguments.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/StandardOutput.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

ExitStatus run(int argumentCount, char** arguments) {
    try {
        reserveStandardStreams();
        watchForCutShortFiles();
        return parseArguments(programTable(), argumentCount, arguments)();
    } catch (const ClosedPipe&) {
        endByClosedPipe();
        return ExitStatus::kFailed;  // the signal is blocked
    } catch (const std::exception&) {
        const Failure failure = failureOf(std::current_exception());
        tell(failure.what());
        return failure.status();
    }
}

}  // namespace
}  // namespace zqpaths::program

int main(int argumentCount, char** arguments) {
    // A closed pipe and the limit of a file's size are seen by whoever writes into them.
    for (const int signal : {SIGPIPE, SIGXFSZ}) static_cast<void>(std::signal(signal, SIG_IGN));
    return static_cast<int>(zqpaths::program::run(argumentCount, arguments));
}
