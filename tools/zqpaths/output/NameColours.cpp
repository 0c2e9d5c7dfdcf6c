#include "tools/zqpaths/output/NameColours.hpp"

#include <algorithm>

namespace zqpaths::program {

NameColours::NameColours(std::string_view variable) {
    while (!variable.empty()) {
        const std::string_view entry = variable.substr(0, variable.find(':'));
        variable.remove_prefix(std::min(entry.size() + 1, variable.size()));
        const std::size_t equals = entry.rfind('=');
        if (equals == std::string_view::npos) continue;
        const std::string_view key = entry.substr(0, equals);
        const std::string_view colour = entry.substr(equals + 1);
        if (colour.find_first_not_of("0123456789;") != std::string_view::npos) continue;
        if (key == "di") folder_ = colour;
        if (key == "fi") file_ = colour;
        if (key.starts_with('*')) bySuffix_.emplace_back(key.substr(1), colour);
    }
}

const std::string& NameColours::ofFile(std::string_view name) const noexcept {
    const auto found = std::find_if(bySuffix_.rbegin(), bySuffix_.rend(),
                                    [name](const auto& row) { return name.ends_with(row.first); });
    return found == bySuffix_.rend() ? file_ : found->second;
}

}  // namespace zqpaths::program
