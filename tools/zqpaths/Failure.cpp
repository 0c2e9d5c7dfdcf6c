#include "tools/zqpaths/Failure.hpp"

#include <new>
#include <system_error>

#include "tools/zqpaths/output/PrintablePath.hpp"
#include "zqpaths/Error.hpp"

namespace zqpaths::program {
namespace {

Failure failureOf(const Error& error) {
    const std::string message = printableText(error.what());
    switch (error.kind()) {
        case ErrorKind::kDamaged:
            return {ExitStatus::kDamaged, message};
        case ErrorKind::kExists:
            return {ExitStatus::kFailed, message + "; --force replaces it"};
        default:
            return {ExitStatus::kFailed, message};
    }
}

}  // namespace

Failure failureAt(std::string_view place, const std::string& reason, ExitStatus status) {
    return {status, printablePath(place) + ": " + reason};
}

Failure systemFailureAt(std::string_view place, int error) {
    return failureAt(place, std::generic_category().message(error));
}

Failure wrongUse(const std::string& reason) {
    return {ExitStatus::kFailed, reason + "\nRun with --help for more."};
}

Failure failureOf(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const Failure& failure) {
        return failure;
    } catch (const Error& libraryError) {
        return failureOf(libraryError);
    } catch (const std::bad_alloc&) {
        return {ExitStatus::kLimit, "out of memory"};
    } catch (const std::exception& other) {
        return {ExitStatus::kFailed, printableText(other.what())};
    }
}

}  // namespace zqpaths::program
