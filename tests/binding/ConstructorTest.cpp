// The forms of the constructor, and the calls of it that do nothing.

#include <gtest/gtest.h>

#include <map>

#include "tests/binding/BindingTest.hpp"
#include "tests/binding/MethodCall.hpp"

namespace binding_tests {
namespace {

class Constructor : public BindingTest {
protected:
    /// What the frequencies form has made of these.
    void expectCoding(std::u16string_view characters, const std::vector<double>& frequencies,
                      const std::u16string& leaves, const std::vector<double>& ofLeaves) {
        const korvex::Object object =
            construct(text(u"frequencies"), text(characters), numbers(frequencies));
        EXPECT_EQ(nameIn(object.get("StringTree").get()), leaves);
        EXPECT_EQ(numbersIn(object.get("Frequencies").get()), ofLeaves);
    }

    /// How often each character was counted.
    static std::map<char16_t, double> countsOf(const korvex::Object& object) {
        const std::u16string leaves = nameIn(object.get("StringTree").get());
        const std::vector<double> counts = numbersIn(object.get("Frequencies").get());
        EXPECT_EQ(leaves.size(), counts.size());
        std::map<char16_t, double> countOf;
        for (std::size_t i = 0; i < counts.size(); ++i) countOf[leaves.at(i)] = counts[i];
        return countOf;
    }

    template <class... Arrays>
    void expectDoesNothing(const Arrays&... inputs) {
        korvex::Object object = construct(inputs...);
        expectIsEmpty(object);
    }

    const korvex::Array twoCharacters = text(u"ab");
    const korvex::Array twoFrequencies = numbers({1, 2});
    const korvex::Array twoLists = listsOf({{u"ab"}, {u"c"}});
};

TEST_F(Constructor, makesAnEmptyObjectFromNothing) {
    expectDoesNothing();
}

TEST_F(Constructor, ignoresASingleInput) {
    for (const char16_t* form : {u"frequencies", u"copy", u"files", u"tree", u"other", u""})
        expectDoesNothing(text(form));
}

TEST_F(Constructor, doesNothingForAnUnknownForm) {
    for (const char16_t* form : {u"other", u"", u"Files", u"files ", u"file", u"\xD800"}) {
        expectDoesNothing(text(form), twoLists);
        expectDoesNothing(text(form), twoCharacters, twoFrequencies);
        expectDoesNothing(text(form), twoCharacters, twoFrequencies, twoFrequencies);
    }
}

TEST_F(Constructor, doesNothingForAFormWithAnotherNumberOfInputs) {
    for (const char16_t* form : {u"frequencies", u"tree"}) expectDoesNothing(text(form), twoLists);
    for (const char16_t* form : {u"copy", u"files", u"tree"})
        expectDoesNothing(text(form), twoCharacters, twoFrequencies);
    for (const char16_t* form : {u"copy", u"files", u"frequencies"})
        expectDoesNothing(text(form), twoCharacters, twoFrequencies, twoFrequencies);
}

TEST_F(Constructor, refusesAFormThatIsNoText) {
    expectError("KORVEX:runtime:wrongInput", [&] { construct(twoFrequencies, twoCharacters); });
    MethodCall call("HuffmanPaths", 1);
    call.setOutput(0, kxCreateObject(newObject()));
    expectHostError("KORVEX:arrays:wrongClass", {"char", "double"}, [&] {
        call.run({twoFrequencies.get(), twoCharacters.get()});
    });
}

TEST_F(Constructor, buildsTheCodeFromFrequencies) {
    expectCoding(u"ab", {1, 2}, u"ab", {1, 2});
    expectCoding(u"ab", {2, 1}, u"ba", {1, 2});
    expectCoding(u"abc", {1, 2, 4}, u"abc", {1, 2, 4});
    expectCoding(u"cba", {4, 2, 1}, u"abc", {1, 2, 4});
}

TEST_F(Constructor, takesCharactersAsCodeUnits) {
    expectCoding(u"\U0001F600", {1, 2}, u"\U0001F600", {1, 2});
    expectCoding(std::u16string_view(u"\0\xFFFF", 2), {1, 2}, std::u16string(u"\0\xFFFF", 2),
                 {1, 2});
}

TEST_F(Constructor, ignoresFrequenciesBeyondTheCharacters) {
    expectCoding(u"ab", {1, 2, 4, 8}, u"ab", {1, 2});
}

TEST_F(Constructor, takesFrequenciesOfAnyShape) {
    const korvex::Array row(kxCreateNumeric(kxClass::kDouble, {1, 2}));
    const korvex::Object object = construct(text(u"frequencies"), twoCharacters, row);
    EXPECT_EQ(numbersIn(object.get("Frequencies").get()), (std::vector<double>{0, 0}));
}

TEST_F(Constructor, refusesAnAlphabetOfFewerThanTwoCharacters) {
    for (const char16_t* tooFew : {u"a", u""}) {
        expectError(kNativeException, kAlphabetTooSmall,
                    [&] { construct(text(u"frequencies"), text(tooFew), twoFrequencies); });
    }
}

TEST_F(Constructor, refusesCharactersThatAreNoText) {
    expectError("KORVEX:arrays:wrongClass",
                [&] { construct(text(u"frequencies"), twoFrequencies, twoFrequencies); });
}

TEST_F(Constructor, leavesTheNewObjectEmptyAfterARefusal) {
    const kobj::COSInterfacePtr object = newObject();
    MethodCall call("HuffmanPaths", 1);
    call.setOutput(0, kxCreateObject(object));
    const korvex::Array form = text(u"files");
    const korvex::Array odd = namesOf({u"a", u"b", u"c"});
    expectHostError("KORVEX:datastoreio:huffmanpaths:fileListNotEven", {}, [&] {
        call.run({form.get(), odd.get()});
    });
    korvex::Object refused(object);
    expectIsEmpty(refused);
}

TEST_F(Constructor, deliversTheObjectAlsoWhenNoOutputIsWanted) {
    const kobj::COSInterfacePtr object = newObject();
    MethodCall call("HuffmanPaths", 0);
    call.setOutput(0, kxCreateObject(object));
    const korvex::Array form = text(u"frequencies");
    call.run({form.get(), twoCharacters.get(), twoFrequencies.get()});
    EXPECT_EQ(nameIn(korvex::Object(object).get("StringTree").get()), u"ab");
}

TEST_F(Constructor, copiesAnotherObject) {
    korvex::Object original = holding(smallListing());
    korvex::Object copy = construct(text(u"copy"), original.toArray());
    expectHolds(copy, smallPaths());
    EXPECT_EQ(walked(copy), walked(original));
    EXPECT_EQ(savedBytes(copy), savedBytes(original));
    for (const char* property : {"StringTree", "Frequencies"}) {
        const korvex::Array ofCopy = copy.get(property);
        const korvex::Array ofOriginal = original.get(property);
        ASSERT_EQ(kxGetNumberOfElements(ofCopy.get()), kxGetNumberOfElements(ofOriginal.get()));
        for (std::size_t i = 0; i < kxGetNumberOfElements(ofCopy.get()); ++i)
            EXPECT_EQ(kxGetNumber(ofCopy.get(), i), kxGetNumber(ofOriginal.get(), i));
    }
}

TEST_F(Constructor, copiesAnEmptyObject) {
    const korvex::Object original = construct();
    expectDoesNothing(text(u"copy"), original.toArray());
}

TEST_F(Constructor, keepsTheNumbersOfOriginalAndCopyApart) {
    korvex::Object original = holding(smallListing());
    korvex::Object copy = construct(text(u"copy"), original.toArray());
    add(copy, {{{u"/", u"data"}}, {{u"x.txt"}}});
    expectHolds(original, smallPaths());
    add(original, {{{u"/"}}, {{u"b", u"a"}}});
    Names ofOriginal = smallPaths();
    ofOriginal.insert(ofOriginal.end(), {u"/b", u"/a"});
    expectHolds(original, ofOriginal);
    Names ofCopy = smallPaths();
    ofCopy.emplace_back(u"/data/x.txt");
    expectHolds(copy, ofCopy);
}

TEST_F(Constructor, copiesWhatOutlivesTheOriginal) {
    korvex::Object copy = [&] {
        korvex::Object original = holding(smallListing());
        return construct(text(u"copy"), original.toArray());
    }();
    expectHolds(copy, smallPaths());
}

TEST_F(Constructor, refusesToCopyWhatIsNoObject) {
    expectError("KORVEX:kobj:notAnObject", [&] { construct(text(u"copy"), twoCharacters); });
}

TEST_F(Constructor, countsTheCharactersOfFoldersAndFiles) {
    EXPECT_EQ(countsOf(coding({{{u"/", u"ab"}, {u"/"}}, {{u"a", u"b"}, {u"bb"}}})),
              (std::map<char16_t, double>{{u'/', 2}, {u'a', 2}, {u'b', 4}}));
}

TEST_F(Constructor, countsFoldersThatAreGivenAsTexts) {
    std::vector<korvex::Array> elements;
    elements.push_back(text(u"/ab"));
    elements.push_back(text(u"/"));
    elements.push_back(namesOf({u"a", u"b"}));
    elements.push_back(namesOf({u"bb"}));
    EXPECT_EQ(countsOf(construct(text(u"files"), korvex::cell(std::move(elements)))),
              (std::map<char16_t, double>{{u'/', 2}, {u'a', 2}, {u'b', 4}}));
}

TEST_F(Constructor, countsCodeUnits) {
    EXPECT_EQ(countsOf(coding({{{u"\U0001F600"}}, {{u"\U0001F601\xD83D"}}})),
              (std::map<char16_t, double>{{u'\xD83D', 3}, {u'\xDE00', 1}, {u'\xDE01', 1}}));
}

TEST_F(Constructor, takesTheElementsOfTheListInTheirOrderWhateverItsShape) {
    const korvex::Array square(kxCreateCell({2, 2}));
    korvex::Array changing(kxDuplicateArray(square.get()));
    kxReplaceCell(changing.get(), 0, text(u"ab").release());
    kxReplaceCell(changing.get(), 1, text(u"b").release());
    kxReplaceCell(changing.get(), 2, namesOf({u"c"}).release());
    kxReplaceCell(changing.get(), 3, namesOf({u"c", u"c"}).release());
    EXPECT_EQ(countsOf(construct(text(u"files"), changing)),
              (std::map<char16_t, double>{{u'a', 1}, {u'b', 2}, {u'c', 3}}));
}

TEST_F(Constructor, countsEmptyListsAsNothing) {
    EXPECT_EQ(countsOf(coding({{{}, {u"", u"ab"}}, {{}, {}}})),
              (std::map<char16_t, double>{{u'a', 1}, {u'b', 1}}));
}

TEST_F(Constructor, addsNoneOfThePathsThatItCounts) {
    korvex::Object object = coding(smallListing());
    expectHolds(object, {});
    EXPECT_EQ(walked(object), Lists());
}

TEST_F(Constructor, readsAllFoldersByTheShapeOfTheFirst) {
    std::vector<korvex::Array> textFirst;
    textFirst.push_back(text(u"ab"));
    textFirst.push_back(namesOf({u"cd"}));
    textFirst.push_back(namesOf({u"e"}));
    textFirst.push_back(namesOf({u"f"}));
    const korvex::Array folderOfTextsLast = korvex::cell(std::move(textFirst));
    expectError("KORVEX:arrays:wrongClass", [&] { construct(text(u"files"), folderOfTextsLast); });

    std::vector<korvex::Array> cellFirst;
    cellFirst.push_back(namesOf({u"cd"}));
    cellFirst.push_back(text(u"ab"));
    cellFirst.push_back(namesOf({u"e"}));
    cellFirst.push_back(namesOf({u"f"}));
    const korvex::Array textLast = korvex::cell(std::move(cellFirst));
    expectError("KORVEX:arrays:wrongClass", [&] { construct(text(u"files"), textLast); });
}

TEST_F(Constructor, readsAnEmptyTextAsAnEmptyFolderIfTheFirstFolderIsAList) {
    std::vector<korvex::Array> elements;
    elements.push_back(namesOf({u"ab"}));
    elements.push_back(text(u""));
    elements.push_back(namesOf({u"b"}));
    elements.push_back(namesOf({u"a", u"a"}));
    EXPECT_EQ(countsOf(construct(text(u"files"), korvex::cell(std::move(elements)))),
              (std::map<char16_t, double>{{u'a', 3}, {u'b', 2}}));
}

TEST_F(Constructor, refusesAnOddNumberOfFoldersAndFileLists) {
    for (const Lists& odd : {Lists{{u"a"}, {u"b"}, {u"c"}}, Lists{{u"ab"}}}) {
        expectError("KORVEX:datastoreio:huffmanpaths:fileListNotEven",
                    [&] { construct(text(u"files"), listsOf(odd)); });
    }
}

TEST_F(Constructor, refusesAListWithoutDimensions) {
    const korvex::Array shapeless(kxCreateCell({}));
    expectError("KORVEX:datastoreio:huffmanpaths:fileListNotEven",
                [&] { construct(text(u"files"), shapeless); });
}

TEST_F(Constructor, refusesListsThatHoldFewerThanTwoCharacters) {
    for (const Lists& list : {Lists{}, Lists{{u"a"}, {u"aa"}}, Lists{{}, {}}}) {
        expectError(kNativeException, kAlphabetTooSmall,
                    [&] { construct(text(u"files"), listsOf(list)); });
    }
}

TEST_F(Constructor, refusesListsThatAreNone) {
    expectError("KORVEX:arrays:wrongClass", [&] { construct(text(u"files"), twoFrequencies); });
    std::vector<korvex::Array> elements;
    elements.push_back(text(u"ab"));
    elements.push_back(text(u"cd"));
    const korvex::Array fileListIsText = korvex::cell(std::move(elements));
    expectError("KORVEX:arrays:wrongClass", [&] { construct(text(u"files"), fileListIsText); });
}

TEST_F(Constructor, refusesNamesThatAreNoText) {
    std::vector<korvex::Array> folder;
    folder.push_back(numbers({97, 98}));
    std::vector<korvex::Array> elements;
    elements.push_back(korvex::cell(std::move(folder)));
    elements.push_back(namesOf({u"ab"}));
    const korvex::Array lists = korvex::cell(std::move(elements));
    expectError("KORVEX:arrays:wrongClass", [&] { construct(text(u"files"), lists); });
}

TEST_F(Constructor, restoresASavedTree) {
    korvex::Object original = holding(smallListing());
    const auto saved = original.call("serialize", 2);
    korvex::Object restored = construct(text(u"tree"), saved[0], saved[1], twoFrequencies);
    expectHolds(restored, smallPaths());
    EXPECT_EQ(nameIn(restored.get("StringTree").get()), nameIn(saved[0].get()));
    EXPECT_EQ(numbersIn(restored.get("Frequencies").get()), (std::vector<double>{1, 2}));
    add(restored, {{{u"/", u"logs"}}, {{u"t"}}});
    EXPECT_EQ(joined(restored, {4}), Names{u"/logs/t"});
}

TEST_F(Constructor, restoresNothingFromAnEmptyTreeStringButSetsFrequencies) {
    korvex::Object original = holding(smallListing());
    const auto saved = original.call("serialize", 2);
    korvex::Object restored = construct(text(u"tree"), text(u""), saved[1], numbers({3, 5, 7}));
    EXPECT_EQ(numbersIn(restored.get("Frequencies").get()), (std::vector<double>{3, 5, 7}));
    EXPECT_EQ(nameIn(restored.get("StringTree").get()), u"");
    expectHolds(restored, {});
}

TEST_F(Constructor, takesNoFrequenciesWithASavedTree) {
    korvex::Object original = holding(smallListing());
    const auto saved = original.call("serialize", 2);
    korvex::Object restored = construct(text(u"tree"), saved[0], saved[1], numbers({}));
    expectHolds(restored, smallPaths());
    EXPECT_EQ(numbersIn(restored.get("Frequencies").get()), std::vector<double>());
}

TEST_F(Constructor, refusesADamagedTree) {
    korvex::Object original = holding(smallListing());
    const auto saved = original.call("serialize", 2);
    std::vector<std::uint8_t> cut = bytesIn(saved[1].get());
    cut.resize(cut.size() / 2);
    expectError(kNativeException, "The compressed bytes are damaged.",
                [&] { construct(text(u"tree"), saved[0], korvex::bytes(cut), twoFrequencies); });
    expectError(kNativeException,
                "The shape or the characters of the coding tree end before the tree is complete.",
                [&] { construct(text(u"tree"), text(u"ab"), saved[1], twoFrequencies); });
}

TEST_F(Constructor, refusesATreeOfOtherThanBytes) {
    expectError("KORVEX:arrays:wrongClass",
                [&] { construct(text(u"tree"), twoCharacters, twoFrequencies, twoFrequencies); });
}

}  // namespace
}  // namespace binding_tests
