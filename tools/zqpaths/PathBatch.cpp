#include "tools/zqpaths/PathBatch.hpp"

#include <utility>

#include "tools/zqpaths/PathComponents.hpp"
#include "tools/zqpaths/PathText.hpp"

namespace zqpaths {

void PathBatch::append(std::string_view path) {
    const std::string_view folder = path.substr(0, folderLength(path));
    if (pathCount_ == 0 || folder != folder_) {
        folder_ = folder;
        std::vector<std::string_view> components;
        cutFolder(folder, components);
        std::vector<korvex::Array> names;
        names.reserve(components.size());
        for (const std::string_view component : components) names.push_back(toArray(component));
        folders_.push_back(korvex::cell(std::move(names)));
        files_.emplace_back();
    }
    files_.back().push_back(toArray(path.substr(folder.size())));
    ++pathCount_;
}

korvex::Array PathBatch::takeFolders() {
    return korvex::cell(std::exchange(folders_, {}));
}

korvex::Array PathBatch::takeFiles() {
    std::vector<korvex::Array> lists;
    lists.reserve(files_.size());
    for (std::vector<korvex::Array>& names : files_)
        lists.push_back(korvex::cell(std::move(names)));
    files_.clear();
    pathCount_ = 0;
    characterCount_ = 0;
    return korvex::cell(std::move(lists));
}

korvex::Array PathBatch::toArray(std::string_view name) {
    text_.clear();
    appendUtf16(name, text_);
    characterCount_ += text_.size();
    return korvex::text(text_);
}

}  // namespace zqpaths
