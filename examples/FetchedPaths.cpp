#include "examples/FetchedPaths.hpp"

#include <algorithm>
#include <numeric>

#include "tools/zqpaths/PathComponents.hpp"
#include "tools/zqpaths/PathText.hpp"

namespace examples {
namespace {

/// Paths that are fetched at a time: enough to share the folders, few enough for the caches.
constexpr std::size_t kRange = 8192;

}  // namespace

void FetchedPaths::visit(std::size_t first, std::size_t last, const Visitor& visitor) {
    numbers_.resize(last - first + 1);
    std::iota(numbers_.begin(), numbers_.end(), static_cast<double>(first));
    folders_.clear();
    files_.clear();
    set_.getPath(folders_, files_, numbers_);

    std::size_t number = first;
    for (std::size_t group = 0; group < folders_.size(); ++group) {
        decodeFolder(folders_[group]);
        for (const compressedpaths::Bytes& code : files_[group]) {
            decodeFile(code);
            visitor(number++, path_);
        }
    }
}

std::string_view FetchedPaths::at(std::size_t number) {
    std::string_view found;
    visit(number, number, [&found](std::size_t, std::string_view path) { found = path; });
    return found;
}

void FetchedPaths::decodeFolder(const compressedpaths::Path& folder) {
    path_.clear();
    for (const compressedpaths::Bytes& code : folder) {
        component_.clear();
        zqpaths::appendBytes(set_.generatePathFrom(code), component_);
        zqpaths::appendToFolder(component_, path_);
    }
    folderLength_ = path_.size();
}

void FetchedPaths::decodeFile(const compressedpaths::Bytes& code) {
    path_.resize(folderLength_);
    zqpaths::appendBytes(set_.generatePathFrom(code), path_);
}

std::optional<std::size_t> firstDifference(compressedpaths::HuffmanPathTree& set,
                                           const PathList& paths) {
    std::optional<std::size_t> difference;
    FetchedPaths fetched(set);
    for (std::size_t first = 1; first <= paths.size() && !difference; first += kRange) {
        const std::size_t last = std::min(paths.size(), first + kRange - 1);
        std::size_t next = first;
        fetched.visit(first, last, [&](std::size_t number, std::string_view path) {
            next = number + 1;
            if (!difference && (number > last || path != paths[number - 1])) difference = number;
        });
        if (!difference && next <= last) difference = next;
    }
    return difference;
}

std::size_t countByWalk(compressedpaths::HuffmanPathTree& set) {
    std::size_t count = 0;
    compressedpaths::Path path;
    for (set.resetPathsToBTree(); set.hasNextPathFromBTree(); ++count)
        set.getNextPathFromBTree(path);
    return count;
}

}  // namespace examples
