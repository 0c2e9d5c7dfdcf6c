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
    static constexpr std::size_t kMaxPaths = 65'536;

    /// Appends a path that is not empty and holds no NUL. O(bytes).
    void append(std::string_view path);

    std::size_t size() const noexcept { return pathCount_; }
    bool isFull() const noexcept { return pathCount_ >= kMaxPaths; }

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
};

}  // namespace zqpaths
