#include "tools/zqpaths/output/PathFields.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths::program {
namespace {

// In the order of PathField.
constexpr std::array<std::string_view, 5> kNames{"number", "path", "folder", "name", "extension"};

std::string_view extensionOf(std::string_view name) noexcept {
    name = name.substr(0, name.find_last_not_of(kSeparator) + 1);
    const std::size_t dot = name.rfind('.');
    const bool hasOne = dot != std::string_view::npos && name.find_first_not_of('.') < dot;
    return hasOne ? name.substr(dot + 1) : std::string_view();
}

PathField fieldOf(std::string_view name) {
    const auto* const found = std::ranges::find(kNames, name);
    if (found == kNames.end())
        throw wrongUse("--fields: there is no field '" + printableText(name) +
                       "', but number, path, folder, name and extension");
    return static_cast<PathField>(found - kNames.begin());
}

}  // namespace

std::string_view nameOf(PathField field) noexcept {
    return kNames[static_cast<std::size_t>(field)];
}

PathFields parsePathFields(std::string_view names) {
    PathFields fields;
    while (true) {
        const std::size_t end = std::min(names.find(','), names.size());
        const PathField field = fieldOf(names.substr(0, end));
        if (std::ranges::count(fields, field) > 0)
            throw wrongUse("--fields: " + std::string(nameOf(field)) + " is given twice");
        fields.push_back(field);
        if (end == names.size()) return fields;
        names.remove_prefix(end + 1);
    }
}

std::string_view partOf(PathField field, std::string_view path) noexcept {
    const std::size_t folder = folderLength(path);
    switch (field) {
        case PathField::kFolder:
            return path.substr(0, folder);
        case PathField::kName:
            return path.substr(folder);
        case PathField::kExtension:
            return extensionOf(path.substr(folder));
        default:
            return path;
    }
}

}  // namespace zqpaths::program
