#include "zqpaths/directory/ScanOptions.hpp"

#include <string_view>

#include "zqpaths/file/SetFileBytes.hpp"

namespace zqpaths {
namespace {

// Each is the long name of the program's option.
constexpr std::string_view kFollow = "follow";
constexpr std::string_view kHidden = "hidden";
constexpr std::string_view kOneFileSystem = "one-file-system";

}  // namespace

ScanOptions scanOptionsOf(const WalkOptions& options) {
    ScanOptions record;
    const auto put = [&record](std::string_view key, bool isOn) {
        if (isOn) record.emplace_back(key, "");
    };
    put(kFollow, options.follow);
    put(kHidden, !options.skipHidden);
    put(kOneFileSystem, options.oneFileSystem);
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
