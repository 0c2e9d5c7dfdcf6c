#include "binding/HuffmanPaths_GetPaths.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "binding/InstanceAccess.hpp"
#include "binding/NameCells.hpp"
#include "host/matrix/Matrix.hpp"

namespace binding {
namespace {

using compressedpaths::HuffmanPathTree;
using compressedpaths::Path;

/// The text in front of each file of a folder.
std::u16string folderPrefix(const Path& codedFolder, const std::u16string& separator,
                            const HuffmanPathTree& tree) {
    std::u16string prefix = tree.generatePathFrom(codedFolder.front());
    for (std::size_t i = 1; i < codedFolder.size(); ++i) {
        if (i > 1) prefix += separator;
        prefix += tree.generatePathFrom(codedFolder[i]);
    }
    if (codedFolder.size() > 1) prefix += separator;
    return prefix;
}

/// Makes whole paths and puts them into a column, one after the other.
class PathColumn {
public:
    PathColumn(std::size_t pathCount, std::u16string separator, const HuffmanPathTree& tree)
        : paths_(matrix::detail::do_create_cell(pathCount, 1)),
          separator_(std::move(separator)),
          tree_(tree) {}

    /// Folders without components or without files add nothing.
    void append(const std::vector<Path>& codedFolders, const std::vector<Path>& codedFiles) {
        const std::size_t groupCount = std::min(codedFolders.size(), codedFiles.size());
        for (std::size_t group = 0; group < groupCount; ++group)
            if (!codedFolders[group].empty()) append(codedFolders[group], codedFiles[group]);
    }

    kxArrayPtr take() { return std::move(paths_); }

private:
    void append(const Path& codedFolder, const Path& codedFiles) {
        std::u16string path = folderPrefix(codedFolder, separator_, tree_);
        const std::size_t prefixLength = path.size();
        for (const compressedpaths::Bytes& codedFile : codedFiles) {
            path.resize(prefixLength);
            path += tree_.generatePathFrom(codedFile);
            kxReplaceCell(paths_.get(), nextRow_++, matrix::to_korvex(matrix::create(path)));
        }
    }

    kxArrayPtr paths_;
    std::size_t nextRow_ = 0;
    std::u16string separator_;
    const HuffmanPathTree& tree_;
};

/// As many paths are fetched at a time as stay in the nearest caches while they are decoded
/// (bench/boundary).
constexpr std::size_t kFetchedTogether = 256;

kxArrayPtr joinedPaths(const std::vector<double>& numbers, std::u16string separator,
                       HuffmanPathTree& tree) {
    PathColumn paths(numbers.size(), std::move(separator), tree);
    for (std::size_t first = 0; first < numbers.size(); first += kFetchedTogether) {
        const std::size_t last = std::min(first + kFetchedTogether, numbers.size());
        const std::vector<double> some(numbers.begin() + static_cast<std::ptrdiff_t>(first),
                                       numbers.begin() + static_cast<std::ptrdiff_t>(last));
        std::vector<Path> codedFolders;
        std::vector<Path> codedFiles;
        tree.getPath(codedFolders, codedFiles, some);
        paths.append(codedFolders, codedFiles);
    }
    return paths.take();
}

}  // namespace

HuffmanPaths_GetPaths::HuffmanPaths_GetPaths()
    : HuffmanPathsMethodInfo({object(), {"double", "partitions"}, {"char", "filesep", true}},
                             {{"cell", "paths"}, {"cell", "files", true}}) {}

void HuffmanPaths_GetPaths::run(std::int32_t& outputCount, kxArray** outputs,
                                std::int32_t inputCount, const kxArray* const* inputs) {
    if (outputCount == 0) return;

    HuffmanPathTree& tree = pathTreeOf(inputs[0]);
    const std::vector<double> numbers = matrix::get_doubles(inputs[1]);
    if (inputCount == 3) {
        outputs[0] = matrix::to_korvex(joinedPaths(numbers, matrix::get_ustring(inputs[2]), tree));
        return;
    }

    std::vector<Path> codedFolders;
    std::vector<Path> codedFiles;
    tree.getPath(codedFolders, codedFiles, numbers);
    kxArrayPtr folders = toNameColumns(codedFolders, tree);
    kxArrayPtr files = toNameColumns(codedFiles, tree);
    outputs[0] = matrix::to_korvex(std::move(folders));
    outputs[1] = matrix::to_korvex(std::move(files));
}

}  // namespace binding
