#pragma once
// Lists of names as the host passes them, and back:
//
//     const korvex::Array folders = listsOf({{u"/", u"data"}, {u"/", u"logs"}});
//     listsIn(folders.get());  // {{u"/", u"data"}, {u"/", u"logs"}}
//
// A list is a cell column; a name is a character row. What is read must have just this shape.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "host/arrays/kxArray.hpp"
#include "host/runtime/Arrays.hpp"

namespace host_lists {

using Names = std::vector<std::u16string>;
using Lists = std::vector<Names>;

inline korvex::Array namesOf(const Names& names) {
    std::vector<korvex::Array> elements;
    elements.reserve(names.size());
    for (const std::u16string& name : names) elements.push_back(korvex::text(name));
    return korvex::cell(std::move(elements));
}

inline korvex::Array listsOf(const Lists& lists) {
    std::vector<korvex::Array> elements;
    elements.reserve(lists.size());
    for (const Names& names : lists) elements.push_back(namesOf(names));
    return korvex::cell(std::move(elements));
}

inline kxDimensions dimensionsOf(const kxArray* array) {
    const auto dimensions = kxGetDimensions(array);
    return {dimensions.begin(), dimensions.end()};
}

inline std::u16string nameIn(const kxArray* row) {
    std::u16string name(kxGetCharacters(row));
    EXPECT_EQ(dimensionsOf(row), (kxDimensions{1, name.size()}));
    return name;
}

/// `read` of each element of a cell column.
template <class Read>
auto elementsIn(const kxArray* column, Read read) {
    std::vector<decltype(read(column))> elements;
    EXPECT_EQ(kxGetClass(column), kxClass::kCell);
    EXPECT_EQ(dimensionsOf(column), (kxDimensions{kxGetNumberOfElements(column), 1}));
    for (std::size_t i = 0; i < kxGetNumberOfElements(column); ++i)
        elements.push_back(read(kxGetCell(column, i)));
    return elements;
}

inline Names namesIn(const kxArray* column) {
    return elementsIn(column, nameIn);
}

inline Lists listsIn(const kxArray* column) {
    return elementsIn(column, namesIn);
}

}  // namespace host_lists
