#include "binding/NameCells.hpp"

#include "host/matrix/Matrix.hpp"

namespace binding {
namespace {

std::vector<std::u16string> toNames(const kxArray* names, const std::string& position,
                                    RefuseEmpty refuseEmpty) {
    const std::size_t count = kxGetNumberOfElements(names);
    if (count == 0) refuseEmpty(position);

    std::vector<std::u16string> list;
    list.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const kxArray* const name = kxGetCell(names, i);
        if (kxGetNumberOfElements(name) == 0) refuseEmpty(position + ", " + std::to_string(i + 1));
        list.push_back(matrix::get_ustring(name));
    }
    return list;
}

}  // namespace

std::vector<std::vector<std::u16string>> toNameLists(const kxArray* lists,
                                                     RefuseEmpty refuseEmpty) {
    const std::size_t count = kxGetNumberOfElements(lists);
    std::vector<std::vector<std::u16string>> all;
    all.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        all.push_back(toNames(kxGetCell(lists, i), std::to_string(i + 1), refuseEmpty));
    return all;
}

kxArrayPtr toNameColumn(const compressedpaths::Path& codedNames,
                        const compressedpaths::HuffmanPathTree& tree) {
    kxArrayPtr column = matrix::detail::do_create_cell(codedNames.size(), 1);
    for (std::size_t i = 0; i < codedNames.size(); ++i) {
        const std::u16string name = tree.generatePathFrom(codedNames[i]);
        kxReplaceCell(column.get(), i, matrix::to_korvex(matrix::create(name)));
    }
    return column;
}

kxArrayPtr toNameColumns(const std::vector<compressedpaths::Path>& codedLists,
                         const compressedpaths::HuffmanPathTree& tree) {
    kxArrayPtr column = matrix::detail::do_create_cell(codedLists.size(), 1);
    for (std::size_t i = 0; i < codedLists.size(); ++i)
        kxReplaceCell(column.get(), i, matrix::to_korvex(toNameColumn(codedLists[i], tree)));
    return column;
}

}  // namespace binding
