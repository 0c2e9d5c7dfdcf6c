#pragma once
// PathBatch collects paths for one call into the set: neighbouring paths of one folder as one
// entry.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/runtime/Arrays.hpp"

namespace zqpaths {

class PathBatch {
public:
    // Small, so that the arrays of a batch are still in the caches when they are read and freed:
    // larger batches made indexing slower by a quarter.
    static constexpr std::size_t kMaxPaths = 8'192;
    static constexpr std::size_t kMaxCharacters = std::size_t{1} << 24;  // of very deep folders

    /// Appends a path that is not empty and holds no NUL. O(bytes).
    void append(std::string_view path);

    std::size_t size() const noexcept { return pathCount_; }
    bool isFull() const noexcept {
        return pathCount_ >= kMaxPaths || characterCount_ >= kMaxCharacters;
    }

    /// The arrays that the method "addPaths" takes, in its order: after both nothing is left in the
    /// batch.
    korvex::Array takeFolders();
    korvex::Array takeFiles();

private:
    korvex::Array toArray(std::string_view name);

    std::string folder_;   // of the last path
    std::u16string text_;  // of one name, used again
    std::vector<korvex::Array> folders_;
    std::vector<std::vector<korvex::Array>> files_;
    std::size_t pathCount_ = 0;
    std::size_t characterCount_ = 0;  // of all names
};

}  // namespace zqpaths
