#include "zqpaths/exclusion/ExclusionRules.hpp"

#include <re2/re2.h>
#include <re2/set.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>

#include "zqpaths/Error.hpp"
#include "zqpaths/exclusion/ExclusionPattern.hpp"

namespace zqpaths {
namespace {

constexpr std::int64_t kMaxMemory = std::int64_t{64} << 20;
constexpr std::size_t kMaxPatternBytes = std::size_t{1} << 16;  // paths are shorter as a rule

RE2::Options byteOptions() {
    RE2::Options options(RE2::Latin1);
    options.set_dot_nl(true);
    options.set_log_errors(false);
    options.set_max_mem(kMaxMemory);
    return options;
}

[[noreturn]] void refuseSize() {
    throw Error(ErrorKind::kWrongUse, "", "the patterns to exclude are too many or too large");
}

/// A line without the spaces at its end; one after a backslash stays, with the backslash.
std::string_view withoutSpacesAtEnd(std::string_view line) {
    std::size_t end = 0;  // of what stays
    for (std::size_t i = 0; i < line.size(); ++i) {
        const bool isEscape = line[i] == '\\' && i + 1 < line.size();
        if (isEscape) ++i;
        if (isEscape || line[i] != ' ') end = i + 1;
    }
    return line.substr(0, end);
}

}  // namespace

struct ExclusionRules::Compiled {
    Compiled() : set(byteOptions(), RE2::ANCHOR_BOTH) {}

    RE2::Set set;
    std::vector<ExclusionPattern> patterns;  // by their numbers in the set
};

std::vector<std::string> exclusionPatterns(std::string_view text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    std::vector<std::string> patterns;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (line.starts_with('#')) continue;
        line = withoutSpacesAtEnd(line);
        if (!line.empty()) patterns.emplace_back(line);
    }
    return patterns;
}

ExclusionRules::ExclusionRules(const std::vector<std::string>& patterns) {
    auto compiled = std::make_unique<Compiled>();
    for (const std::string& pattern : patterns) {
        if (pattern.size() > kMaxPatternBytes) refuseSize();
        ExclusionPattern parsed = parseExclusion(pattern);
        if (parsed.regex.empty()) continue;
        if (compiled->set.Add(parsed.regex, nullptr) < 0) refuseSize();
        parsed.regex.clear();
        compiled->patterns.push_back(std::move(parsed));
    }
    if (compiled->patterns.empty()) return;
    if (!compiled->set.Compile()) refuseSize();
    compiled_ = std::move(compiled);
}

ExclusionRules::ExclusionRules(ExclusionRules&&) noexcept = default;
ExclusionRules& ExclusionRules::operator=(ExclusionRules&&) noexcept = default;
ExclusionRules::~ExclusionRules() = default;

bool ExclusionRules::isEmpty() const noexcept {
    return compiled_ == nullptr;
}

bool ExclusionRules::excludes(std::string_view path, EntryKind kind) const {
    if (isEmpty()) return false;
    thread_local std::vector<int> matched;  // kept, because it is asked for every name of a tree
    RE2::Set::ErrorInfo error{};
    if (!compiled_->set.Match({path.data(), path.size()}, &matched, &error)) {
        if (error.kind == RE2::Set::kOutOfMemory) refuseSize();
        return false;
    }
    int last = -1;
    for (const int number : matched) {
        const ExclusionPattern& pattern = compiled_->patterns[static_cast<std::size_t>(number)];
        if (kind == EntryKind::kDirectory || !pattern.isForDirectories)
            last = std::max(last, number);
    }
    return last >= 0 && !compiled_->patterns[static_cast<std::size_t>(last)].isNegative;
}

}  // namespace zqpaths
