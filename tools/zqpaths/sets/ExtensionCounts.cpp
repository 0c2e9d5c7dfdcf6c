#include "tools/zqpaths/sets/ExtensionCounts.hpp"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "tools/zqpaths/output/PathFields.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kMostCounted = 32768;  // extensions at once

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept {
        return std::hash<std::string_view>()(text);
    }
};

/// Finds the extensions that many paths have, though there may be too many to count each (J. Misra,
/// D. Gries, "Finding repeated elements", 1982). A table that is full lets every extension in it go
/// once, and forgets those that are then at zero:
///
///     room for 2:   a a b   a:2 b:1   c comes   a:1      (each of a, b and c was let go once)
///
/// So many different ones go at a time that none can be let go more than paths / room times: what
/// more paths have is in the table at the end. Its count there is too low by what was let go, and
/// they are counted anew.
class FrequentExtensions {
public:
    void add(std::string_view extension) {
        if (const auto found = counts_.find(extension); found != counts_.end()) {
            ++found->second;
        } else if (counts_.size() < kMostCounted) {
            counts_.emplace(extension, 1);
        } else {
            isExact_ = false;
            for (auto& row : counts_) --row.second;
            std::erase_if(counts_, [](const auto& row) { return row.second == 0; });
        }
    }

    bool isExact() const noexcept { return isExact_; }

    /// From then on only those in the table are counted, from zero on.
    void beginAnew() noexcept {
        for (auto& row : counts_) row.second = 0;
    }
    void count(std::string_view extension) {
        if (const auto found = counts_.find(extension); found != counts_.end()) ++found->second;
    }

    std::vector<ExtensionCounts::Extension> most(std::size_t limit) const {
        std::vector<ExtensionCounts::Extension> all;
        for (const auto& [name, count] : counts_) all.push_back({name, count});
        const auto end = all.begin() + static_cast<std::ptrdiff_t>(std::min(limit, all.size()));
        std::ranges::partial_sort(all, end, [](const auto& a, const auto& b) {
            return std::pair(b.count, std::string_view(a.name)) <
                   std::pair(a.count, std::string_view(b.name));
        });
        all.erase(end, all.end());
        return all;
    }

private:
    std::unordered_map<std::string, std::uint64_t, TextHash, std::equal_to<>> counts_;
    bool isExact_ = true;
};

}  // namespace

ExtensionCounts countExtensions(const PathSet& set, std::size_t limit,
                                const std::function<void()>& step) {
    ExtensionCounts counts;
    FrequentExtensions extensions;
    std::uint64_t with = 0;
    const WantedPaths wanted(set, false);
    set.forEach([&](std::uint64_t number, std::string_view path) {
        step();
        if (!wanted.has(number)) return;
        const std::string_view extension = partOf(PathField::kExtension, path);
        if (extension.empty()) {
            ++counts.none;
        } else {
            ++with;
            extensions.add(extension);
        }
    });
    if (!extensions.isExact()) {
        extensions.beginAnew();
        set.forEach([&](std::uint64_t number, std::string_view path) {
            step();
            if (wanted.has(number)) extensions.count(partOf(PathField::kExtension, path));
        });
    }
    counts.most = extensions.most(limit);
    counts.others = with;
    for (const ExtensionCounts::Extension& extension : counts.most)
        counts.others -= extension.count;
    return counts;
}

}  // namespace zqpaths::program
