#include "tools/zqpaths/sources/listings/ListingSource.hpp"

#include <optional>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {

SourceReport ListingSource::visit(const std::function<void(std::string_view path)>& visitor) {
    input_.visit([&](std::string_view line) {
        const auto refuse = [&](const std::string& reason) {
            throw failureAt(input_.name(), input_.place("line") + reason);
        };
        std::optional<std::string_view> path;
        try {
            path = reader_(line);
        } catch (const UnexpectedLine& unexpected) {
            refuse(": expected " + unexpected.expected);
        }
        if (!path) return;
        if (path->empty()) refuse(" has an empty path");
        if (path->find('\0') != std::string_view::npos) refuse(" has a NUL in its path");
        visitor(*path);
    });
    return {};
}

}  // namespace zqpaths::program
