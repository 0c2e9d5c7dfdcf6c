#include "tools/zqpaths/FolderText.hpp"

#include "tools/zqpaths/PathComponents.hpp"
#include "tools/zqpaths/PathText.hpp"

namespace zqpaths {

std::string folderText(const std::vector<std::u16string>& components) {
    std::string folder;
    for (const std::u16string& component : components) {
        std::string name;
        appendBytes(component, name);
        appendToFolder(name, folder);
    }
    return folder;
}

}  // namespace zqpaths
