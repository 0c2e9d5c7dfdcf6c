#include "zqpaths/set/CollectedPaths.hpp"

#include <algorithm>

#include "compressedpaths/store/Hashing.hpp"
#include "zqpaths/text/EqualPrefix.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kMetFolders = std::size_t{1} << 18;  // a power of two
constexpr std::size_t kFewPaths = 4096;                    // whose folders need not be remembered

/// A path in which every other byte is a separator has the most folders.
std::size_t mostFoldersOf(std::string_view path) noexcept {
    return path.size() / 2 + 1;
}

}  // namespace

bool CollectedPaths::hasRoomFor(std::string_view path) const noexcept {
    if (isEmpty()) return true;
    return size() < kMaxPaths && text_.size() < kMaxTextSize &&
           path.size() <= kMaxTextSize - text_.size() && folderCount_ < kMaxFolders &&
           mostFoldersOf(path) <= kMaxFolders - folderCount_;
}

void CollectedPaths::append(std::string_view path) {
    text_.reserveFor(path.size());
    ends_.reserveFor(1);
    countFolders(path);
    text_.append(path.data(), path.size());
    ends_.append(text_.size());
}

std::string_view CollectedPaths::operator[](std::size_t position) const noexcept {
    const std::size_t begin = position == 0 ? 0 : ends_[position - 1];
    return {text_.data() + begin, ends_[position] - begin};
}

void CollectedPaths::clear() noexcept {
    text_.truncate(0);
    ends_.truncate(0);
    folderCount_ = 0;
    std::ranges::fill(metFolders_, 0U);
}

/// Counts the folders of a path that the path before is not in, unless the last of them was met.
void CollectedPaths::countFolders(std::string_view path) {
    const std::string_view before = isEmpty() ? std::string_view() : (*this)[size() - 1];
    const std::string_view rest = path.substr(equalPrefix(before, path));
    const std::size_t lastSeparator = rest.rfind(kSeparator);
    if (lastSeparator == std::string_view::npos) return;

    if (size() >= kFewPaths) {
        if (metFolders_.empty()) metFolders_.resize(kMetFolders);
        const std::size_t folderSize = path.size() - rest.size() + lastSeparator;
        const std::uint64_t hash =
            compressedpaths::hashOf(path.data(), folderSize, compressedpaths::processSeed());
        std::uint32_t& met = metFolders_[hash % kMetFolders];
        const auto mark = static_cast<std::uint32_t>(hash >> 32 | 1);
        if (met == mark) return;
        met = mark;
    }
    folderCount_ += static_cast<std::size_t>(std::count(
        rest.begin(), rest.begin() + static_cast<std::ptrdiff_t>(lastSeparator) + 1, kSeparator));
}

}  // namespace zqpaths
