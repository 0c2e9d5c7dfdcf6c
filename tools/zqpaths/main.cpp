// Runs what the arguments ask for, and turns whatever goes wrong into a message and an exit status.

#include <csignal>
#include <exception>
#include <new>
#include <string>

#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/StandardStreams.hpp"
#include "tools/zqpaths/arguments/Arguments.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/output/StandardOutput.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/Error.hpp"

namespace zqpaths::program {
namespace {

ExitStatus fail(ExitStatus status, const std::string& message) {
    tell(message);
    return status;
}

ExitStatus fail(const Error& error) {
    const std::string message = printableText(error.what());
    switch (error.kind()) {
        case ErrorKind::kDamaged:
            return fail(ExitStatus::kDamaged, message);
        case ErrorKind::kExists:
            return fail(ExitStatus::kFailed, message + "; --force replaces it");
        default:
            return fail(ExitStatus::kFailed, message);
    }
}

/// Ends the process by the signal that a write into a closed pipe sends: whoever reads has what it
/// wants, and a shell knows the status (141). All that had to be cleaned up is.
ExitStatus endAsClosedPipe() {
    static_cast<void>(std::signal(SIGPIPE, SIG_DFL));
    static_cast<void>(raise(SIGPIPE));
    return ExitStatus::kFailed;  // the signal is blocked
}

ExitStatus run(int argumentCount, char** arguments) {
    try {
        reserveStandardStreams();
        watchForCutShortFiles();
        return parseArguments(programTable(), argumentCount, arguments)();
    } catch (const ClosedPipe&) {
        return endAsClosedPipe();
    } catch (const Failure& failure) {
        return fail(failure.status(), failure.what());
    } catch (const Error& error) {
        return fail(error);
    } catch (const std::bad_alloc&) {
        return fail(ExitStatus::kLimit, "out of memory");
    } catch (const std::exception& error) {
        return fail(ExitStatus::kFailed, printableText(error.what()));
    }
}

}  // namespace
}  // namespace zqpaths::program

int main(int argumentCount, char** arguments) {
    // A closed pipe and the limit of a file's size are seen by whoever writes into them.
    for (const int signal : {SIGPIPE, SIGXFSZ}) static_cast<void>(std::signal(signal, SIG_IGN));
    return static_cast<int>(zqpaths::program::run(argumentCount, arguments));
}
