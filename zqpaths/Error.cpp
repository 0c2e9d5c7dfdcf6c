#include "zqpaths/Error.hpp"

#include <cerrno>
#include <system_error>

namespace zqpaths {
namespace {

std::string textOf(std::string_view place, std::string_view reason) {
    std::string text(place);
    if (!place.empty()) text += ": ";
    text += reason;
    return text;
}

ErrorKind kindOf(int error) noexcept {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return ErrorKind::kNotFound;
        case EEXIST:
            return ErrorKind::kExists;
        case EISDIR:
            return ErrorKind::kNotASet;
        case ENOSPC:
        case EDQUOT:
            return ErrorKind::kNoSpace;
        default:
            return ErrorKind::kSystem;
    }
}

}  // namespace

Error::Error(ErrorKind kind, std::string_view place, std::string_view reason, int systemCode)
    : std::runtime_error(textOf(place, reason)), kind_(kind), systemCode_(systemCode) {}

Error systemError(std::string_view file, int error) {
    const ErrorKind kind = kindOf(error);
    // A full quota and a full device are one to people: something has to go.
    if (kind == ErrorKind::kNoSpace)
        return {kind, file, "there is no space left on the device", error};
    return {kind, file, std::generic_category().message(error), error};
}

}  // namespace zqpaths
