#include "zqpaths/set/SetBuilding.hpp"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "compressedpaths/coding/CodedBatch.hpp"
#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

using compressedpaths::CodedBatch;
using compressedpaths::CodeTables;
using compressedpaths::HuffmanPathTree;

constexpr std::size_t kSlicePaths = 8192;  // fewer are sooner done than a thread is started

std::string_view folderOf(std::string_view path) {
    return path.substr(0, folderLength(path));
}

/// Where slices of the paths end. None ends within the paths of one folder, so that these stay one
/// entry.
std::vector<std::size_t> sliceEnds(const CollectedPaths& paths) {
    std::vector<std::size_t> ends;
    for (std::size_t end = kSlicePaths; end < paths.size(); end += kSlicePaths) {
        const std::string_view folder = folderOf(paths[end - 1]);
        while (end < paths.size() && folderOf(paths[end]) == folder) ++end;
        if (end < paths.size()) ends.push_back(end);
    }
    if (paths.size() > 0) ends.push_back(paths.size());
    return ends;
}

/// Goes through a slice of the paths. Calls `beginFolder(sharedComponents)` where another folder
/// begins, `component(name)` for each component that it does not share with the one before in the
/// slice, then `file(name)` for each path in it.
template <class BeginFolder, class Component, class File>
void cutSlice(const CollectedPaths& paths, std::size_t first, std::size_t end,
              BeginFolder beginFolder, Component component, File file) {
    std::string_view folder;
    for (std::size_t i = first; i < end; ++i) {
        const std::string_view path = paths[i];
        const std::string_view next = folderOf(path);
        if (i == first || next != folder) {
            const SharedFolder shared = sharedFolder(folder, next);
            beginFolder(shared.components);
            std::string_view rest = next.substr(shared.length);
            bool isFirst = shared.components == 0;
            while (isFirst || !rest.empty()) {
                component(takeComponent(rest, isFirst));
                isFirst = false;
            }
            folder = next;
        }
        file(path.substr(next.size()));
    }
}

/// A slice of the paths, coded.
std::unique_ptr<CodedBatch> codeSlice(const CollectedPaths& paths, std::size_t first,
                                      std::size_t end, const CodeTables& tables) {
    auto batch = std::make_unique<CodedBatch>(tables);
    std::u16string text;
    const auto asUtf16 = [&text](std::string_view name) -> std::u16string_view {
        text.clear();
        appendUtf16(name, text);
        return text;
    };
    cutSlice(
        paths, first, end, [&](std::size_t shared) { batch->beginEntry(shared); },
        [&](std::string_view name) { batch->appendFolder(asUtf16(name)); },
        [&](std::string_view name) { batch->appendFile(asUtf16(name)); });
    return batch;
}

}  // namespace

void countCharacters(const CollectedPaths& paths, unsigned threads, CharacterCounts& counts) {
    const std::vector<std::size_t> ends = sliceEnds(paths);
    std::atomic<std::size_t> nextSlice{0};
    // A piece is all that one thread comes to: its counts are larger than what it counts.
    const auto countSlices = [&](std::size_t) {
        CharacterCounts mine;
        const auto count = [&mine](std::string_view name) { mine.count(name); };
        for (std::size_t i = nextSlice++; i < ends.size(); i = nextSlice++)
            cutSlice(
                paths, i == 0 ? 0 : ends[i - 1], ends[i], [](std::size_t) {}, count, count);
        return mine;
    };
    makeInOrder(std::min<std::size_t>(threads, ends.size()), threads, countSlices,
                [&](const CharacterCounts& mine) { counts.add(mine); });
}

void makeCode(const CharacterCounts& counts, HuffmanPathTree& set) {
    set.deflateHuffman(counts.frequencies().data(), counts.characters());
}

void addPaths(const CollectedPaths& paths, unsigned threads, HuffmanPathTree& set,
              const WorkWatcher& watch) {
    const std::vector<std::size_t> ends = sliceEnds(paths);
    const CodeTables& tables = set.codeTables();  // which adding leaves as they are
    std::size_t added = 0;
    std::size_t slice = 0;
    makeInOrder(
        ends.size(), threads,
        [&](std::size_t i) { return codeSlice(paths, i == 0 ? 0 : ends[i - 1], ends[i], tables); },
        [&](const std::unique_ptr<CodedBatch>& batch) {
            set.addCodedBatch(*batch);
            const std::size_t before = std::exchange(added, ends[slice++]);
            if (watch) watch(WorkStep::kCoding, added - before);
        });
}

}  // namespace zqpaths
