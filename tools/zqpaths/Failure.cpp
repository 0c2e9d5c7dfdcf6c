#include "tools/zqpaths/Failure.hpp"

#include <system_error>

#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {

Failure failureAt(std::string_view place, const std::string& reason, ExitStatus status) {
    return {status, printablePath(place) + ": " + reason};
}

Failure systemFailureAt(std::string_view place, int error) {
    return failureAt(place, std::generic_category().message(error));
}

Failure wrongUse(const std::string& reason) {
    return {ExitStatus::kFailed, reason + "\nRun with --help for more."};
}

}  // namespace zqpaths::program
