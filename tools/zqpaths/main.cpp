// Runs what the arguments ask for, and turns whatever goes wrong into a message and an exit status.

#include <csignal>
#include <exception>
#include <new>

#include "host/runtime/Error.hpp"
#include "tools/zqpaths/Arguments.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/Messages.hpp"
#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/StandardStreams.hpp"

namespace {

using zqpaths::ExitStatus;

ExitStatus fail(ExitStatus status, const char* message) {
    zqpaths::tell(message);
    return status;
}

ExitStatus run(int argumentCount, char** arguments) {
    try {
        zqpaths::reserveStandardStreams();
        return zqpaths::parseArguments(argumentCount, arguments)();
    } catch (const zqpaths::ClosedPipe&) {
        return ExitStatus::kDone;  // whoever reads has what it wants
    } catch (const zqpaths::Failure& failure) {
        return fail(failure.status(), failure.what());
    } catch (const std::bad_alloc&) {
        return fail(ExitStatus::kLimit, "out of memory");
    } catch (const std::exception& error) {
        return fail(ExitStatus::kFailed, error.what());
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    std::signal(SIGPIPE, SIG_IGN);  // a closed pipe is seen by whoever writes into it
    std::signal(SIGXFSZ, SIG_IGN);  // so is the limit of a file's size
    return static_cast<int>(run(argumentCount, arguments));
}
