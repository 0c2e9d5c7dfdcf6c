#pragma once
// Sets of several segments, each as a test wants it, however few paths it has:
//
//     SegmentedSet made({{SegmentForm::kImage, {"a/b"}}, {SegmentForm::kPacked, {"c"}}});
//     made.open().path(2);  // "c"
//
// Threads: belongs to one thread at a time.

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/set/SegmentBuilder.hpp"

namespace zqpaths {

struct SegmentContent {
    SegmentForm form;
    std::vector<std::string> paths;
};

class SegmentedSet {
public:
    explicit SegmentedSet(const std::vector<SegmentContent>& segments) {
        SetFileWriter writer(file(), SetFileWriter::Mode::kCreate);
        for (const auto& [form, paths] : segments) {
            CollectedPaths collected;
            for (const std::string& path : paths) collected.append(path);
            writer.append(buildSegment(collected, form, 1).view());
            paths_.insert(paths_.end(), paths.begin(), paths.end());
        }
        writer.commit();
    }

    /// These paths in `count` segments of chance sizes, every third of them packed.
    static SegmentedSet ofPaths(const std::vector<std::string>& paths, std::size_t count,
                                std::mt19937& random) {
        std::vector<SegmentContent> segments(count);
        for (std::size_t i = 0; i < count; ++i) {
            segments[i].form = i % 3 == 2 ? SegmentForm::kPacked : SegmentForm::kImage;
            segments[i].paths.push_back(paths[i]);  // none is empty
        }
        std::size_t next = count;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t left = paths.size() - next;
            const std::size_t share = i + 1 == count ? left : random() % (left + 1);
            for (const std::size_t end = next + share; next < end; ++next)
                segments[i].paths.push_back(paths[next]);
        }
        return SegmentedSet(segments);
    }

    std::string file() const { return tree_.pathOf("s.zqp"); }
    PathSet open() const { return PathSet::open(file()); }

    /// In the order of their numbers.
    const std::vector<std::string>& paths() const noexcept { return paths_; }

private:
    test_support::TemporaryTree tree_;
    std::vector<std::string> paths_;
};

/// A path with its number.
using Numbered = std::pair<std::uint64_t, std::string>;

/// Three segments of both forms, with a path that is there twice, and one that is no text.
inline SegmentedSet sampleSet() {
    return SegmentedSet({{SegmentForm::kImage, {"/usr/bin/a", "/usr/bin/b"}},
                         {SegmentForm::kPacked, {"plain", "/usr/lib/caf\xC3\xA9\xFF"}},
                         {SegmentForm::kImage, {"/usr/bin/b", "a//b/"}}});
}

/// What `visitAll(visitor)` visits, in its order.
template <class VisitAll>
std::vector<Numbered> visitedBy(VisitAll visitAll) {
    std::vector<Numbered> visited;
    visitAll(
        [&](std::uint64_t number, std::string_view path) { visited.emplace_back(number, path); });
    return visited;
}

/// The paths that a predicate holds for, with their numbers.
template <class Holds>
std::vector<Numbered> numberedWhere(const std::vector<std::string>& paths, Holds holds) {
    std::vector<Numbered> numbered;
    for (std::size_t i = 0; i < paths.size(); ++i)
        if (holds(paths[i])) numbered.emplace_back(i + 1, paths[i]);
    return numbered;
}

}  // namespace zqpaths
