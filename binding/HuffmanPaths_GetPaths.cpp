#include "binding/HuffmanPaths_GetPaths.hpp"

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

/// A column of `pathCount` whole paths. Folders without components have none.
kxArrayPtr joinedPaths(const std::vector<Path>& codedFolders, const std::vector<Path>& codedFiles,
                       const std::u16string& separator, std::size_t pathCount,
                       const HuffmanPathTree& tree) {
    kxArrayPtr paths = matrix::detail::do_create_cell(pathCount, 1);
    std::size_t row = 0;
    for (std::size_t group = 0; group < codedFolders.size(); ++group) {
        if (codedFolders[group].empty()) continue;
        std::u16string path = folderPrefix(codedFolders[group], separator, tree);
        const std::size_t prefixLength = path.size();
        for (const compressedpaths::Bytes& codedFile : codedFiles[group]) {
            path.resize(prefixLength);
            path += tree.generatePathFrom(codedFile);
            kxReplaceCell(paths.get(), row++, matrix::to_korvex(matrix::create(path)));
        }
    }
    return paths;
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
    std::vector<Path> codedFolders;
    std::vector<Path> codedFiles;
    tree.getPath(codedFolders, codedFiles, numbers);

    if (inputCount == 2) {
        kxArrayPtr folders = toNameColumns(codedFolders, tree);
        kxArrayPtr files = toNameColumns(codedFiles, tree);
        outputs[0] = matrix::to_korvex(std::move(folders));
        outputs[1] = matrix::to_korvex(std::move(files));
    } else {
        const std::u16string separator = matrix::get_ustring(inputs[2]);
        outputs[0] = matrix::to_korvex(
            joinedPaths(codedFolders, codedFiles, separator, numbers.size(), tree));
    }
}

}  // namespace binding
