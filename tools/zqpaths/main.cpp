// Runs what the arguments ask for, and turns whatever goes wrong into a message and an exit status.

#include <csignal>
#include <exception>
#include <new>

#include "tools/zqpaths/Arguments.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/MemoryShortage.hpp"
#include "tools/zqpaths/Messages.hpp"
#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/StandardStreams.hpp"

namespace {

using zqpaths::ExitStatus;

ExitStatus fail(ExitStatus status, const char* message) {
    zqpaths::tell(message);
    return status;
}

ExitStatus failForWantOfMemory() {
    return fail(ExitStatus::kLimit, "out of memory");
}

/// What looks like a damage, or like anything that only a library knows, when memory has run out,
/// is the want of it.
ExitStatus failUnlessForWantOfMemory(ExitStatus status, const char* message) {
    return zqpaths::hasMemoryRunOut() ? failForWantOfMemory() : fail(status, message);
}

ExitStatus run(int argumentCount, char** arguments) {
    try {
        zqpaths::watchMemory();
        zqpaths::reserveStandardStreams();
        return zqpaths::parseArguments(argumentCount, arguments)();
    } catch (const zqpaths::ClosedPipe&) {
        return ExitStatus::kDone;  // whoever reads has what it wants
    } catch (const zqpaths::Failure& failure) {
        if (failure.status() == ExitStatus::kDamaged)
            return failUnlessForWantOfMemory(failure.status(), failure.what());
        return fail(failure.status(), failure.what());
    } catch (const std::bad_alloc&) {
        return failForWantOfMemory();
    } catch (const std::exception& error) {
        return failUnlessForWantOfMemory(ExitStatus::kFailed, error.what());
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    // A closed pipe and the limit of a file's size are seen by whoever writes into them.
    for (const int signal : {SIGPIPE, SIGXFSZ}) static_cast<void>(std::signal(signal, SIG_IGN));
    return static_cast<int>(run(argumentCount, arguments));
}
