#include "tools/zqpaths/sources/ListSource.hpp"

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {

ListSource::ListSource(const std::string& fileName, bool nulDelimited, ByteRange range)
    : input_(fileName, nulDelimited ? '\0' : '\n', range), unit_(nulDelimited ? "path" : "line") {}

SourceReport ListSource::visit(const std::function<void(std::string_view path)>& visitor) {
    input_.visit([&](std::string_view path) {
        const auto refuse = [&](const char* reason) {
            throw failureAt(input_.name(), input_.place(unit_) + reason);
        };
        if (path.empty()) refuse(" is empty");
        if (path.find('\0') != std::string_view::npos)
            refuse(" holds a NUL, which no path can; -0 is for paths that end with one");
        visitor(path);
    });
    return {};
}

}  // namespace zqpaths::program
