// Coding a batch on all cores. Each worker writes the slots of its own entries, so that the result
// does not depend on which of them is done first.

#ifdef ZQ_PLAIN_THREADS
#include <algorithm>
#include <atomic>
#include <exception>
#include <thread>
#else
#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#endif

#include <type_traits>
#include <utility>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

#ifdef ZQ_PLAIN_THREADS

/// Calls `code(first, last)` for parts of 0 to count - 1, on plain threads: the thread sanitizer
/// cannot see how the library that is used otherwise orders its work.
template <class Code>
void codeInParallel(std::size_t count, Code code) {
    std::atomic<std::size_t> next{0};
    std::vector<std::exception_ptr> errors(std::max(2U, std::thread::hardware_concurrency()));
    {
        std::vector<std::jthread> workers;
        for (std::exception_ptr& error : errors)
            workers.emplace_back([&next, &error, count, code] {
                try {
                    for (std::size_t i = next++; i < count; i = next++) code(i, i);
                } catch (...) {
                    error = std::current_exception();
                }
            });
    }
    for (const std::exception_ptr& error : errors)
        if (error) std::rethrow_exception(error);
}

#else

/// Calls `code(first, last)` for parts of 0 to count - 1, which together are all of it. The first
/// exception of a worker stops the others and is thrown here.
template <class Code>
void codeInParallel(std::size_t count, Code code) {
    using Range = tbb::blocked_range<std::size_t>;
    tbb::task_group_context context;
    tbb::parallel_for(
        Range(0, count, 1), [code](const Range& range) { code(range.begin(), range.end() - 1); },
        tbb::auto_partitioner(), context);
}

#endif

}  // namespace

void HuffmanPathTree::generateCodeAsyncAndAddPaths(
    std::vector<std::vector<std::u16string>>& folders,
    std::vector<std::vector<std::u16string>>& files) {
    if (folders.size() != files.size()) throw UnequalBatchListsException();

    asyncFolders = folders;
    asyncFiles = files;
    asyncCodedFolders.assign(folders.size(), {});
    asyncCodedFiles.assign(folders.size(), {});
    if (!folders.empty())
        codeInParallel(folders.size(), [this](std::size_t first, std::size_t last) {
            generateCodeForPath(first, last);
        });
    addPathToBTreeFromAsyncData();
}

void HuffmanPathTree::generateCodeForPath(std::size_t first, std::size_t last) {
    const auto codeAll = [this](const std::vector<std::u16string>& components) {
        std::vector<Bytes> coded;
        coded.reserve(components.size());
        for (const std::u16string& component : components) coded.push_back(codeOf(component));
        return coded;
    };
    for (std::size_t i = first; i <= last; ++i) {
        std::vector<Bytes> codedFolder = codeAll(asyncFolders[i]);
        {
            const std::lock_guard lock(asyncFoldersMutex);
            asyncCodedFolders[i] = std::move(codedFolder);
        }
        std::vector<Bytes> codedFiles = codeAll(asyncFiles[i]);
        {
            const std::lock_guard lock(asyncFilesMutex);
            asyncCodedFiles[i] = std::move(codedFiles);
        }
    }
}

void HuffmanPathTree::clearThreadResources() {
    const auto release = [](auto& list) { std::remove_reference_t<decltype(list)>().swap(list); };
    release(asyncFolders);
    release(asyncFiles);
    release(asyncCodedFolders);
    release(asyncCodedFiles);
}

}  // namespace compressedpaths
