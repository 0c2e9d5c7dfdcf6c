// Coding a batch on all cores, straight from the lists given. Each worker fills batches of its own,
// in slots that say where they belong, so that the result does not depend on who is done first.
// Nothing else stands here: a program that codes batches itself is not linked with oneTBB.

#include <algorithm>
#include <memory>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/coding/ParallelLoop.hpp"

namespace compressedpaths {
namespace {

using Names = std::vector<std::u16string>;

/// Entries and names of a batch that a thread codes sooner than it wakes others.
constexpr std::size_t kFewEntries = 64;
constexpr std::size_t kFewNames = 512;

bool hasFewNames(const std::vector<Names>& folders, const std::vector<Names>& files) noexcept {
    if (folders.size() >= kFewEntries) return false;
    std::size_t count = 0;
    for (std::size_t i = 0; i < folders.size(); ++i) count += folders[i].size() + files[i].size();
    return count < kFewNames;
}

std::size_t sharedComponents(const Names& one, const Names& other) noexcept {
    const auto end = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    return static_cast<std::size_t>(end.first - one.begin());
}

/// The entries from `first` to before `end`, coded. A component that a folder shares with the one
/// before is neither coded again nor looked for again.
std::unique_ptr<CodedBatch> codedBatch(const CodeTables& tables, const std::vector<Names>& folders,
                                       const std::vector<Names>& files, std::size_t first,
                                       std::size_t end) {
    auto batch = std::make_unique<CodedBatch>(tables);
    for (std::size_t i = first; i < end; ++i) {
        const std::size_t shared = i == first ? 0 : sharedComponents(folders[i - 1], folders[i]);
        batch->beginEntry(shared);
        for (std::size_t level = shared; level < folders[i].size(); ++level)
            batch->appendFolder(folders[i][level]);
        for (const std::u16string& file : files[i]) batch->appendFile(file);
    }
    return batch;
}

}  // namespace

void HuffmanPathTree::generateCodeAsyncAndAddPaths(
    std::vector<std::vector<std::u16string>>& folders,
    std::vector<std::vector<std::u16string>>& files) {
    if (folders.size() != files.size()) throw UnequalBatchListsException();

    clearThreadResources();
    if (folders.empty()) return;
    try {
        std::vector<std::unique_ptr<CodedBatch>> slots(folders.size());  // by the first entry
        const auto code = [&](std::size_t first, std::size_t end) {
            slots[first] = codedBatch(codeTables_, folders, files, first, end);
        };
        if (hasFewNames(folders, files))
            code(0, folders.size());
        else
            inParallel(folders.size(), code);

        std::vector<const CodedBatch*> batches;
        for (const std::unique_ptr<CodedBatch>& batch : slots)
            if (batch) batches.push_back(batch.get());
        addCodedBatches(batches);
    } catch (...) {
        keepBatchAside(folders, files);
        throw;
    }
}

/// Keeps the lists of a batch that could not be coded; none of them if there is no memory for all.
void HuffmanPathTree::keepBatchAside(
    const std::vector<std::vector<std::u16string>>& folders,
    const std::vector<std::vector<std::u16string>>& files) noexcept {
    try {
        asyncFolders = folders;
        asyncFiles = files;
        asyncCodedFolders.assign(folders.size(), {});
        asyncCodedFiles.assign(files.size(), {});
    } catch (const std::bad_alloc&) {
        clearThreadResources();
    }
}

}  // namespace compressedpaths
