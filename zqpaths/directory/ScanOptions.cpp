#include "zqpaths/directory/ScanOptions.hpp"

#include <charconv>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "zqpaths/file/SetFileBytes.hpp"

namespace zqpaths {
namespace {

// Each is the long name of the program's option.
constexpr std::string_view kFollow = "follow";
constexpr std::string_view kHidden = "hidden";
constexpr std::string_view kOneFileSystem = "one-file-system";
constexpr std::string_view kExclude = "exclude";  // once for each pattern, in their order
constexpr std::string_view kType = "type";
constexpr std::string_view kMaxDepth = "max-depth";

/// "f,d" of "fd".
std::string apart(std::string_view letters) {
    std::string text;
    for (const char letter : letters) {
        if (!text.empty()) text.push_back(',');
        text.push_back(letter);
    }
    return text;
}

std::string together(std::string_view text) {
    std::string letters(text);
    std::erase(letters, ',');
    return letters;
}

std::uint64_t depthOf(const std::string& text) {
    std::uint64_t depth = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), depth);
    if (error != std::errc() || end != text.data() + text.size() || depth == 0) refuseNewer();
    return depth;
}

}  // namespace

ScanOptions scanOptionsOf(const WalkOptions& options) {
    ScanOptions record;
    const auto put = [&record](std::string_view key, bool isOn) {
        if (isOn) record.emplace_back(key, "");
    };
    put(kFollow, options.follow);
    put(kHidden, !options.skipHidden);
    put(kOneFileSystem, options.oneFileSystem);
    for (const std::string& pattern : options.exclude) record.emplace_back(kExclude, pattern);
    if (!options.types.empty()) record.emplace_back(kType, apart(options.types));
    if (options.maxDepth) record.emplace_back(kMaxDepth, std::to_string(*options.maxDepth));
    return record;
}

WalkOptions walkOptionsOf(const ScanOptions& options, unsigned jobs) {
    WalkOptions walk{.skipHidden = true, .jobs = jobs};
    for (const auto& [key, value] : options) {
        if (key == kFollow)
            walk.follow = true;
        else if (key == kHidden)
            walk.skipHidden = false;
        else if (key == kOneFileSystem)
            walk.oneFileSystem = true;
        else if (key == kExclude)
            walk.exclude.push_back(value);
        else if (key == kType)
            walk.types = together(value);
        else if (key == kMaxDepth)
            walk.maxDepth = depthOf(value);
        else
            refuseNewer();
    }
    return walk;
}

std::string textOf(const ScanOptions& options) {
    std::string text;
    for (const auto& [key, value] : options) {
        if (!text.empty()) text.push_back(' ');
        text.append("--").append(key);
        if (!value.empty()) text.append(" ").append(value);
    }
    return text.empty() ? "no options" : text;
}

}  // namespace zqpaths
