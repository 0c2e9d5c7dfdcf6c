#include "tools/zqpaths/sources/ListSource.hpp"

#include <cstdint>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {

ListSource::ListSource(const std::string& fileName, bool nulDelimited)
    : input_(fileName, nulDelimited ? '\0' : '\n'), unit_(nulDelimited ? "path " : "line ") {}

SourceReport ListSource::visit(const std::function<void(std::string_view path)>& visitor) {
    input_.visit([&](std::string_view path, std::uint64_t number) {
        const auto refuse = [&](const char* reason) {
            throw failureAt(input_.name(), unit_ + std::to_string(number) + reason);
        };
        if (path.empty()) refuse(" is empty");
        if (path.find('\0') != std::string_view::npos)
            refuse(" holds a NUL, which no path can; -0 is for paths that end with one");
        visitor(path);
    });
    return {};
}

}  // namespace zqpaths::program
