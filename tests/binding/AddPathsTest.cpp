// addPaths: what it adds, what it refuses, and that a refusal leaves the object as it was.

#include <gtest/gtest.h>

#include "tests/binding/BindingTest.hpp"

namespace binding_tests {
namespace {

class AddPaths : public BindingTest {
protected:
    AddPaths() : object(holding(smallListing())) {}

    void addAll(const korvex::Array& folders, const korvex::Array& files) {
        object.call("addPaths", 0, folders, files);
    }

    /// Fails the test unless these are refused and the object is as before.
    void expectRefused(const char* key, const korvex::Array& folders, const korvex::Array& files) {
        const std::vector<std::uint8_t> before = savedBytes(object);
        expectError(key, [&] { addAll(folders, files); });
        EXPECT_EQ(savedBytes(object), before);
        expectHolds(object, smallPaths());
    }

    void expectHoldsAlso(const Names& added) {
        Names all = smallPaths();
        all.insert(all.end(), added.begin(), added.end());
        expectHolds(object, all);
    }

    korvex::Object object;
};

constexpr const char* kUnequalNumber = "KORVEX:datastoreio:huffmanpaths:unequalNumFolderFileList";
constexpr const char* kFolderEmpty = "KORVEX:datastoreio:huffmanpaths:folderElementEmpty";
constexpr const char* kFileEmpty = "KORVEX:datastoreio:huffmanpaths:fileElementEmpty";
constexpr const char* kWrongClass = "KORVEX:arrays:wrongClass";

/// A cell column with `element` as its only element.
korvex::Array cellWith(korvex::Array element) {
    std::vector<korvex::Array> elements;
    elements.push_back(std::move(element));
    return korvex::cell(std::move(elements));
}

TEST_F(AddPaths, addsBehindWhatIsThere) {
    addAll(listsOf({{u"/"}, {u"/", u"tag"}}), listsOf({{u"b"}, {u"a", u"x"}}));
    expectHoldsAlso({u"/b", u"/tag/a", u"/tag/x"});
}

TEST_F(AddPaths, addsToAFolderThatIsThere) {
    addAll(listsOf({{u"/", u"data"}, {u"/", u"data"}}), listsOf({{u"s"}, {u"t", u"a.txt"}}));
    expectHoldsAlso({u"/data/s", u"/data/t", u"/data/a.txt"});
}

TEST_F(AddPaths, addsNothingFromEmptyLists) {
    addAll(listsOf({}), listsOf({}));
    addAll(korvex::Array(kxCreateCell({0, 0})), korvex::Array(kxCreateCell({})));
    expectHolds(object, smallPaths());
}

TEST_F(AddPaths, addsNothingToAnEmptyObjectFromEmptyLists) {
    korvex::Object empty = construct();
    empty.call("addPaths", 0, listsOf({}), listsOf({}));
    expectIsEmpty(empty);
}

TEST_F(AddPaths, takesElementsInTheirOrderWhateverTheShape) {
    const korvex::Array column = listsOf({{u"/"}, {u"d"}, {u"l"}, {u"t"}});
    korvex::Array square(kxCreateCell({2, 2}));
    for (std::size_t i = 0; i < 4; ++i)
        kxReplaceCell(square.get(), i, kxDuplicateArray(kxGetCell(column.get(), i)));
    addAll(square, listsOf({{u"a"}, {u"b"}, {u"g"}, {u"o"}}));
    expectHoldsAlso({u"/a", u"db", u"lg", u"to"});
}

TEST_F(AddPaths, takesTheCharactersOfANameInTheirOrderWhateverTheShape) {
    korvex::Array square(kxCreateNumeric(kxClass::kCharacter, {2, 2}));
    const std::u16string name = u"data";
    std::copy(name.begin(), name.end(), kxGetData<char16_t>(square.get()).begin());
    addAll(listsOf({{u"/"}}), cellWith(cellWith(std::move(square))));
    expectHoldsAlso({u"/data"});
}

TEST_F(AddPaths, leavesItsInputsAsTheyWere) {
    const korvex::Array folders = listsOf({{u"/", u"tag"}});
    const korvex::Array files = listsOf({{u"a", u"b"}});
    addAll(folders, files);
    EXPECT_EQ(listsIn(folders.get()), (Lists{{u"/", u"tag"}}));
    EXPECT_EQ(listsIn(files.get()), (Lists{{u"a", u"b"}}));
}

TEST_F(AddPaths, addsThousandsOfFoldersInOrder) {
    Listing many;
    Names paths = smallPaths();
    for (std::size_t i = 0; i < 3000; ++i) {
        const std::u16string name(1 + i % 5, u"adglost"[i % 7]);
        many.folders.push_back({u"/", name + u"." + std::u16string(i / 35 % 100, u'x')});
        many.files.push_back({u"a", u"b"});
        for (const char16_t* file : {u"a", u"b"})
            paths.push_back(u"/" + many.folders.back()[1] + u"/" + file);
    }
    add(object, many);
    expectHolds(object, paths);
}

TEST_F(AddPaths, refusesUnequalNumbersOfFoldersAndFileLists) {
    expectRefused(kUnequalNumber, listsOf({{u"/"}, {u"d"}}), listsOf({{u"a"}, {u"b"}, {u"x"}}));
    expectRefused(kUnequalNumber, listsOf({{u"/"}}), listsOf({}));
}

TEST_F(AddPaths, comparesTheNumbersBeforeItLooksAtElements) {
    expectRefused(kUnequalNumber, listsOf({{}, {u""}}), listsOf({{}, {}, {}}));
}

TEST_F(AddPaths, refusesFoldersWithoutComponents) {
    expectRefused(kFolderEmpty, listsOf({{u"/"}, {}}), listsOf({{u"a"}, {u"b"}}));
}

TEST_F(AddPaths, refusesEmptyComponents) {
    expectRefused(kFolderEmpty, listsOf({{u"/"}, {u"d"}, {u"", u"d"}}),
                  listsOf({{u"a"}, {u"b"}, {u"x"}}));
}

TEST_F(AddPaths, refusesFoldersWithoutFiles) {
    expectRefused(kFileEmpty, listsOf({{u"/"}, {u"d"}}), listsOf({{u"a"}, {}}));
}

TEST_F(AddPaths, refusesEmptyFileNames) {
    expectRefused(kFileEmpty, listsOf({{u"/"}}), listsOf({{u"a", u""}}));
}

TEST_F(AddPaths, reportsFoldersBeforeFiles) {
    expectRefused(kFolderEmpty, listsOf({{u"/"}, {}}), listsOf({{}, {u"a"}}));
    expectRefused(kFolderEmpty, listsOf({{u"/"}, {u"d", u""}}), listsOf({{u""}, {}}));
}

TEST_F(AddPaths, takesPlacesInWhichNothingHasBeenPutAsEmpty) {
    expectRefused(kFolderEmpty, korvex::Array(kxCreateCell({1, 1})), listsOf({{u"a"}}));
    expectRefused(kFileEmpty, listsOf({{u"/"}}), cellWith(korvex::Array(kxCreateCell({1, 1}))));
}

TEST_F(AddPaths, refusesACharacterWithoutACode) {
    const std::vector<std::uint8_t> before = savedBytes(object);
    expectError(kNativeException, kCodeNotFound, [&] {
        addAll(listsOf({{u"/"}, {u"/"}}), listsOf({{u"a"}, {u"Z"}}));
    });
    EXPECT_EQ(savedBytes(object), before);
    expectHolds(object, smallPaths());
    addAll(listsOf({{u"/"}}), listsOf({{u"b"}}));
    expectHoldsAlso({u"/b"});
}

TEST_F(AddPaths, refusesAnythingToAnObjectWithoutACode) {
    korvex::Object empty = construct();
    expectError(kNativeException, kCodeNotFound, [&] { add(empty, smallListing()); });
    expectIsEmpty(empty);
}

TEST_F(AddPaths, refusesNamesThatAreNoText) {
    expectRefused(kWrongClass, cellWith(cellWith(numbers({47}))), listsOf({{u"a"}}));
    expectRefused(kWrongClass, listsOf({{u"/"}}), cellWith(cellWith(namesOf({u"a"}))));
}

TEST_F(AddPaths, refusesListsThatAreNone) {
    expectRefused(kWrongClass, cellWith(text(u"/")), listsOf({{u"a"}}));
    expectRefused(kWrongClass, listsOf({{u"/"}}), cellWith(text(u"a")));
}

TEST_F(AddPaths, isNotReachedByInputsOfOtherTypes) {
    expectRefused("KORVEX:runtime:wrongInput", text(u"/"), listsOf({{u"a"}}));
    expectRefused("KORVEX:runtime:wrongInput", listsOf({{u"/"}}), numbers({1}));
}

}  // namespace
}  // namespace binding_tests
