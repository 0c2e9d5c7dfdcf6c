#include "tools/zqpaths/Failure.hpp"

#include <system_error>

#include "tools/zqpaths/PrintablePath.hpp"

namespace zqpaths {

Failure failureAt(std::string_view place, const std::string& reason, ExitStatus status) {
    return {status, printablePath(place) + ": " + reason};
}

Failure systemFailureAt(std::string_view place, int error) {
    return failureAt(place, std::generic_category().message(error));
}

}  // namespace zqpaths
