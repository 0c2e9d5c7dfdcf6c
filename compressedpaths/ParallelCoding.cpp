// Coding a batch on all cores, straight from the lists given. Each worker fills batches of its own,
// in slots that say where they belong, so that the result does not depend on who is done first.
// Nothing else stands here: a program that codes batches itself is not linked with oneTBB.

#ifdef ZQ_PLAIN_THREADS
#include <atomic>
#include <exception>
#include <thread>
#else
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#endif

#include <algorithm>
#include <memory>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

using Names = std::vector<std::u16string>;

/// Entries and names of a batch that a thread codes sooner than it wakes others.
constexpr std::size_t kFewEntries = 64;
constexpr std::size_t kFewNames = 512;

#ifdef ZQ_PLAIN_THREADS

/// Calls `code(first, end)` for parts of 0 to count, on plain threads: the thread sanitizer cannot
/// see how the library that is used otherwise orders its work.
template <class Code>
void codeInParallel(std::size_t count, Code code) {
    const std::size_t threads = std::max(2U, std::thread::hardware_concurrency());
    const std::size_t size = std::max<std::size_t>(1, count / (4 * threads));
    std::atomic<std::size_t> next{0};
    std::vector<std::exception_ptr> errors(threads);
    {
        std::vector<std::jthread> workers;
        for (std::exception_ptr& error : errors)
            workers.emplace_back([&next, &error, &code, count, size] {
                try {
                    for (std::size_t i = next.fetch_add(size); i < count; i = next.fetch_add(size))
                        code(i, std::min(i + size, count));
                } catch (...) {
                    error = std::current_exception();
                }
            });
    }
    for (const std::exception_ptr& error : errors)
        if (error) std::rethrow_exception(error);
}

#else

/// Calls `code(first, end)` for parts of 0 to count, which together are all of it. The first
/// exception of a worker stops the others and is thrown here.
template <class Code>
void codeInParallel(std::size_t count, const Code& code) {
    using Range = tbb::blocked_range<std::size_t>;
    tbb::task_group_context context;
    tbb::parallel_for(
        Range(0, count, 1), [&code](const Range& range) { code(range.begin(), range.end()); },
        tbb::auto_partitioner(), context);
}

#endif

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
            codeInParallel(folders.size(), code);

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
