#include "zqpaths/update/FilesOfFolder.hpp"

#include <algorithm>

#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

using compressedpaths::HuffmanPathTree;

std::vector<std::u16string> componentsOf(std::string_view folder) {
    std::vector<std::string_view> components;
    cutFolder(folder, components);
    std::vector<std::u16string> texts(components.size());
    for (std::size_t i = 0; i < components.size(); ++i) appendUtf16(components[i], texts[i]);
    return texts;
}

}  // namespace

std::vector<FileOfFolder> filesOfFolder(const OpenedSet& set, std::string_view folder) {
    const std::vector<std::u16string> components = componentsOf(folder);
    std::vector<FileOfFolder> files;
    const auto addFrom = [&](const Segment& segment) {
        const auto ranges = segment.read([&](const HuffmanPathTree& paths) {
            const auto id = paths.folderOf(components);
            return id ? paths.entriesOf(*id) : std::vector<Segment::Positions>();
        });
        for (const Segment::Positions& positions : ranges)
            segment.forEachPath(positions, [&](std::size_t position, std::string_view path) {
                if (path.starts_with(folder))
                    files.push_back(
                        {std::string(path.substr(folder.size())), segment.numberOf(position)});
            });
    };
    set.forEachPart(
        [&](const OpenedPart& part) { std::ranges::for_each(part.segments(), addFrom); });
    // Those of one name stay in the order in which the segments gave them.
    std::ranges::stable_sort(files, {}, &FileOfFolder::name);
    return files;
}

}  // namespace zqpaths
