#include "binding/HuffmanPaths_AddPaths.hpp"

#include <string>

#include "binding/HuffmanPathsErrors.hpp"
#include "binding/InstanceAccess.hpp"
#include "binding/NameCells.hpp"

namespace binding {

HuffmanPaths_AddPaths::HuffmanPaths_AddPaths()
    : HuffmanPathsMethodInfo({object(), {"cell", "folderpaths"}, {"cell", "files"}}, {}) {}

void HuffmanPaths_AddPaths::run(std::int32_t& /*outputCount*/, kxArray** /*outputs*/,
                                std::int32_t /*inputCount*/, const kxArray* const* inputs) {
    compressedpaths::HuffmanPathTree& tree = pathTreeOf(inputs[0]);
    if (kxGetNumberOfElements(inputs[1]) != kxGetNumberOfElements(inputs[2]))
        raise<errors::unequalNumFolderFileList>();

    auto folders = toNameLists(inputs[1], [](const std::string& position) {
        raise<errors::folderElementEmpty>(position);
    });
    auto files = toNameLists(
        inputs[2], [](const std::string& position) { raise<errors::fileElementEmpty>(position); });
    tree.generateCodeAsyncAndAddPaths(folders, files);
}

}  // namespace binding
