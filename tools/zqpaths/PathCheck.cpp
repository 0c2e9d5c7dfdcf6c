#include "tools/zqpaths/PathCheck.hpp"

#include <xxhash.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <random>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/Figures.hpp"
#include "tools/zqpaths/PathComponents.hpp"
#include "tools/zqpaths/Progress.hpp"

namespace zqpaths {
namespace {

using Hashes = std::vector<std::uint64_t>;

void sortAndUnite(Hashes& hashes) {
    std::ranges::sort(hashes);
    hashes.erase(std::unique(hashes.begin(), hashes.end()), hashes.end());
}

Hashes without(const Hashes& from, const Hashes& those) {
    Hashes rest;
    std::ranges::set_difference(from, those, std::back_inserter(rest));
    return rest;
}

/// The paths of a set in two ways, by hashes of 64 bits. Two paths of one hash pass for one; a path
/// and a folder of one hash look like a damage, among ten million of them in one of 100,000 runs,
/// and not again in the next one, whose seed is another.
class PathComparison {
public:
    PathComparison() : seed_(std::random_device()()) {}

    /// Throws nothing but std::bad_alloc.
    void addNumbered(std::string_view path) {
        numbered_.push_back(hash(path));
        const std::string_view folder = path.substr(0, folderLength(path));
        if (folder != folder_) addFolders(folder);
    }

    void addWalked(std::string_view path) { walked_.push_back(hash(path)); }

    /// How many a walk should have met, and how many it should not. It may meet a path that is a
    /// folder, too: one that was added twice.
    std::pair<std::size_t, std::size_t> countMissedAndStrange() {
        sortAndUnite(numbered_);
        sortAndUnite(folders_);
        sortAndUnite(walked_);
        return {without(without(numbered_, folders_), walked_).size(),
                without(walked_, numbered_).size()};
    }

private:
    std::uint64_t hash(std::string_view path) const {
        return XXH3_64bits_withSeed(path.data(), path.size(), seed_);
    }

    /// Takes in the paths that are folders of `folder` or itself. What stands alone in front is a
    /// folder that no path can be.
    void addFolders(std::string_view folder) {
        folder_ = folder;
        components_.clear();
        cutFolder(folder, components_);
        text_.clear();
        for (const std::string_view component : components_) {
            const std::size_t length = text_.size();
            if (length > 0) {
                text_ += component;
                folders_.push_back(hash(text_));
                text_.resize(length);
            }
            appendToFolder(component, text_);
        }
    }

    std::uint64_t seed_;
    Hashes numbered_;
    Hashes folders_;
    Hashes walked_;
    std::string folder_;  // of the last path
    std::vector<std::string_view> components_;
    std::string text_;
};

bool isWhole(std::string_view path) {
    if (path.empty() || path.find('\0') != std::string_view::npos) return false;
    const CutPath cut = cutPath(path);
    return !cut.fileName.empty() && joinPath(cut.folder, cut.fileName) == path;
}

[[noreturn]] void refuse(const std::string& file, const std::string& reason) {
    throw failureAt(file, reason, ExitStatus::kDamaged);
}

void fetchAll(PathSet& set, const std::string& file, PathComparison& comparison,
              Progress& progress) {
    set.get(1, set.size(), [&](std::uint64_t number, std::string_view path) {
        if (!isWhole(path))
            refuse(file, "path " + std::to_string(number) + " is empty or has a NUL");
        comparison.addNumbered(path);
        progress.advance();
    });
}

void walkAll(PathSet& set, PathComparison& comparison, Progress& progress) {
    set.walk([&](std::string_view path) {
        comparison.addWalked(path);
        progress.advance();
    });
}

}  // namespace

void requireWholePaths(PathSet& set, const std::string& file, const MessageOptions& messages) {
    PathComparison comparison;
    Progress progress("verifying", messages, 2 * set.size());
    fetchAll(set, file, comparison, progress);
    walkAll(set, comparison, progress);
    const auto [missed, strange] = comparison.countMissedAndStrange();
    if (missed > 0) refuse(file, "a walk misses " + groupDigits(missed) + " paths");
    if (strange > 0)
        refuse(file, "a walk meets " + groupDigits(strange) + " paths that have no number");
}

}  // namespace zqpaths
