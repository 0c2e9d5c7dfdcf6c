// getPaths: the shapes of its two forms, how folder and file are joined, and what it refuses.

#include <gtest/gtest.h>

#include <limits>

#include "tests/binding/BindingTest.hpp"
#include "tests/binding/MethodCall.hpp"

namespace binding_tests {
namespace {

class GetPaths : public BindingTest {
protected:
    GetPaths() : object(holding(smallListing())) {}

    /// The path of one file, in a set that holds nothing else.
    std::u16string only(const Names& folder, const std::u16string& file,
                        std::u16string_view separator) {
        korvex::Object set = codingCharacters(u"/abcdrwtx.");
        add(set, {{folder}, {{file}}});
        return joined(set, {1}, separator).at(0);
    }

    /// Folders and files of the form without separator.
    void expectParts(const std::vector<double>& pathNumbers, const Lists& folders,
                     const Lists& files) {
        const auto outputs = object.call("getPaths", 2, numbers(pathNumbers));
        ASSERT_EQ(outputs.size(), 2U);
        EXPECT_EQ(listsIn(outputs[0].get()), folders);
        EXPECT_EQ(listsIn(outputs[1].get()), files);
    }

    korvex::Object object;
};

TEST_F(GetPaths, givesFoldersWithTheirFiles) {
    expectParts({1, 2, 3}, {{u"/", u"data"}, {u"/", u"logs"}}, {{u"a.txt", u"b.txt"}, {u"x"}});
    expectParts({2}, {{u"/", u"data"}}, {{u"b.txt"}});
    expectParts({3}, {{u"/", u"logs"}}, {{u"x"}});
}

TEST_F(GetPaths, beginsANewGroupWhereNumbersGoBack) {
    expectParts({2, 1}, {{u"/", u"data"}, {u"/", u"data"}}, {{u"b.txt"}, {u"a.txt"}});
    expectParts({3, 1, 2}, {{u"/", u"logs"}, {u"/", u"data"}}, {{u"x"}, {u"a.txt", u"b.txt"}});
}

TEST_F(GetPaths, givesThePathsInTheOrderOfTheNumbers) {
    EXPECT_EQ(joined(object, {3, 2, 1, 2}),
              (Names{u"/logs/x", u"/data/b.txt", u"/data/a.txt", u"/data/b.txt"}));
}

TEST_F(GetPaths, givesThousandsOfPathsInOneRequest) {
    Listing many;
    Names paths;
    for (std::size_t folder = 0; folder < 300; ++folder) {
        const std::u16string name(1 + folder, u'd');
        many.folders.push_back({name});
        many.files.emplace_back();
        for (std::size_t file = 0; file < 9; ++file) {
            many.files.back().push_back(std::u16string(1 + file, u'x'));
            paths.push_back(name + many.files.back().back());
        }
    }
    korvex::Object set = holding(many);
    expectHolds(set, paths);

    // All numbers once, in an order that changes the folder with each; 1,009 shares no factor with
    // 2,700.
    std::vector<double> pathNumbers;
    Names expected;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const std::size_t index = i * 1009 % paths.size();
        pathNumbers.push_back(static_cast<double>(index + 1));
        expected.push_back(paths[index]);
    }
    EXPECT_EQ(joined(set, pathNumbers), expected);

    pathNumbers.push_back(static_cast<double>(paths.size() + 1));
    expectError(kNativeException, kInvalidPathNumber, [&] { joined(set, pathNumbers); });
}

TEST_F(GetPaths, readsTheNumbersInTheirOrderWhateverTheShape) {
    korvex::Array square(kxCreateNumeric(kxClass::kDouble, {2, 2}));
    const std::vector<double> values{3, 1, 2, 3};
    std::copy(values.begin(), values.end(), kxGetData<double>(square.get()).begin());
    const auto outputs = object.call("getPaths", 1, square, text(u"/"));
    EXPECT_EQ(namesIn(outputs.at(0).get()),
              (Names{u"/logs/x", u"/data/a.txt", u"/data/b.txt", u"/logs/x"}));
}

TEST_F(GetPaths, takesNumbersOfOtherClasses) {
    for (const kxClass other : {kxClass::kInt8, kxClass::kUint64, kxClass::kLogical}) {
        korvex::Array number(kxCreateNumeric(other, {1, 1}));
        if (other == kxClass::kInt8) kxGetData<std::int8_t>(number.get())[0] = 1;
        if (other == kxClass::kUint64) kxGetData<std::uint64_t>(number.get())[0] = 1;
        if (other == kxClass::kLogical) kxGetData<bool>(number.get())[0] = true;
        const auto outputs = object.call("getPaths", 1, number, text(u"/"));
        EXPECT_EQ(namesIn(outputs.at(0).get()), Names{u"/data/a.txt"});
    }
}

TEST_F(GetPaths, setsBothOutputsOfTheFormWithoutSeparatorAlways) {
    const korvex::Array self = object.toArray();
    const korvex::Array all = numbers({1, 3});
    MethodCall call("getPaths", 1);
    call.run({self.get(), all.get()});
    EXPECT_EQ(listsIn(call.outputs()[0]), (Lists{{u"/", u"data"}, {u"/", u"logs"}}));
    ASSERT_NE(call.outputs()[1], nullptr);
    EXPECT_EQ(listsIn(call.outputs()[1]), (Lists{{u"a.txt"}, {u"x"}}));
}

TEST_F(GetPaths, setsOneOutputOfTheFormWithSeparatorAlways) {
    const korvex::Array self = object.toArray();
    const korvex::Array all = numbers({1, 3});
    const korvex::Array separator = text(u"/");
    MethodCall call("getPaths", 2);
    call.run({self.get(), all.get(), separator.get()});
    EXPECT_EQ(namesIn(call.outputs()[0]), (Names{u"/data/a.txt", u"/logs/x"}));
    EXPECT_EQ(call.outputs()[1], nullptr);
}

TEST_F(GetPaths, doesNothingWhenNoOutputIsWanted) {
    const korvex::Array self = object.toArray();
    const korvex::Array none = numbers({0, 4, -1});
    const korvex::Array noNumbers = text(u"/");
    for (const auto& inputs :
         {std::vector{self.get(), none.get()}, std::vector{self.get(), none.get(), noNumbers.get()},
          std::vector{none.get(), none.get()}}) {
        MethodCall call("getPaths", 0);
        call.run(inputs);
        EXPECT_EQ(call.outputs(), (std::vector<kxArray*>{nullptr, nullptr}));
        EXPECT_EQ(call.outputCount(), 0);
    }
}

TEST_F(GetPaths, givesEmptyColumnsForNoNumbers) {
    for (const korvex::Array& none :
         {numbers({}), korvex::Array(kxCreateNumeric(kxClass::kDouble, {0, 0}))}) {
        const auto parts = object.call("getPaths", 2, none);
        EXPECT_EQ(dimensionsOf(parts.at(0).get()), (kxDimensions{0, 1}));
        EXPECT_EQ(dimensionsOf(parts.at(1).get()), (kxDimensions{0, 1}));
        const auto paths = object.call("getPaths", 1, none, text(u"/"));
        EXPECT_EQ(dimensionsOf(paths.at(0).get()), (kxDimensions{0, 1}));
    }
}

TEST_F(GetPaths, givesEmptyColumnsOfAnEmptySetForNoNumbers) {
    korvex::Object empty = construct();
    const auto parts = empty.call("getPaths", 2, numbers({}));
    EXPECT_EQ(listsIn(parts.at(0).get()), Lists());
    EXPECT_EQ(listsIn(parts.at(1).get()), Lists());
    EXPECT_EQ(joined(empty, {}), Names());
}

TEST_F(GetPaths, putsNoSeparatorBehindASingleComponent) {
    EXPECT_EQ(only({u"a"}, u"x.txt", u"/"), u"ax.txt");
}

TEST_F(GetPaths, putsNoSeparatorBehindTheFirstComponent) {
    EXPECT_EQ(only({u"a", u"b"}, u"x", u"/"), u"ab/x");
    EXPECT_EQ(only({u"a", u"b", u"c"}, u"x", u"/"), u"ab/c/x");
    EXPECT_EQ(only({u"/", u"data", u"raw"}, u"x", u"/"), u"/data/raw/x");
    EXPECT_EQ(only({u"/", u"data", u"raw", u"t"}, u"x", u"/"), u"/data/raw/t/x");
}

TEST_F(GetPaths, joinsByAnySeparator) {
    EXPECT_EQ(only({u"a", u"b", u"c"}, u"x", u""), u"abcx");
    EXPECT_EQ(only({u"a", u"b", u"c"}, u"x", u" :: "), u"ab :: c :: x");
    EXPECT_EQ(only({u"a", u"b", u"c"}, u"x", u"\U0001F600"), u"ab\U0001F600c\U0001F600x");
    EXPECT_EQ(only({u"a", u"b"}, u"x", u"\xDC00"), u"ab\xDC00x");
    EXPECT_EQ(only({u"a", u"b"}, u"x", std::u16string_view(u"\0", 1)), std::u16string(u"ab\0x", 4));
}

TEST_F(GetPaths, leavesThePlacesOfFilesWithoutFolderComponentsEmpty) {
    // A set of two entries, {} with the file "a" and {"b"} with the file "c", as it is saved. No
    // batch makes such a set; saved by another program, it loads.
    const std::vector<std::uint8_t> bytes{
        0x3A, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x78, 0xDA, 0x63, 0x62, 0x80, 0x00, 0x29,
        0x56, 0x66, 0x28, 0x8B, 0x89, 0x91, 0x01, 0xC6, 0x04, 0xB2, 0x99, 0x98, 0x98, 0x99, 0x98,
        0x18, 0x18, 0x19, 0x21, 0x6C, 0x06, 0x38, 0x60, 0x64, 0x04, 0x00, 0x0A, 0x17, 0x00, 0x44};
    korvex::Object loaded =
        construct(text(u"tree"), text(u"cab"), korvex::bytes(bytes), numbers({}));
    const auto parts = loaded.call("getPaths", 2, numbers({1, 2}));
    EXPECT_EQ(listsIn(parts.at(0).get()), (Lists{{}, {u"b"}}));
    EXPECT_EQ(listsIn(parts.at(1).get()), (Lists{{u"a"}, {u"c"}}));

    const auto paths = loaded.call("getPaths", 1, numbers({1, 2}), text(u"/"));
    ASSERT_EQ(dimensionsOf(paths.at(0).get()), (kxDimensions{2, 1}));
    EXPECT_EQ(nameIn(kxGetCell(paths[0].get(), 0)), u"bc");
    EXPECT_EQ(dimensionsOf(kxGetCell(paths[0].get(), 1)), (kxDimensions{0, 0}));
}

TEST_F(GetPaths, givesNoRowsForFoldersThatComeWithoutFiles) {
    // The path "/" "a" as it is saved, but without the totals that say which files are whose: the
    // folder of the entry is known, its files are not.
    const std::vector<std::uint8_t> bytes{
        0x33, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x78, 0xDA, 0x63, 0x62, 0x80,
        0x00, 0x36, 0x66, 0x26, 0x28, 0x8B, 0x91, 0x01, 0xC6, 0x02, 0x32, 0x18, 0x99,
        0x18, 0x19, 0x19, 0xC1, 0x82, 0x0C, 0x70, 0x69, 0x00, 0x03, 0x71, 0x00, 0x1B};
    korvex::Object loaded =
        construct(text(u"tree"), text(u"/a"), korvex::bytes(bytes), numbers({}));
    const auto parts = loaded.call("getPaths", 2, numbers({1}));
    EXPECT_EQ(listsIn(parts.at(0).get()), (Lists{{u"/"}}));
    EXPECT_EQ(listsIn(parts.at(1).get()), Lists{});

    const auto paths = loaded.call("getPaths", 1, numbers({1}), text(u"/"));
    ASSERT_EQ(dimensionsOf(paths.at(0).get()), (kxDimensions{1, 1}));
    EXPECT_EQ(dimensionsOf(kxGetCell(paths[0].get(), 0)), (kxDimensions{0, 0}));
}

TEST_F(GetPaths, refusesNumbersThatNoPathHas) {
    for (const double number : {0.0, 4.0, -1.0, 1.5, 1e300, std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN()}) {
        expectError(kNativeException, kInvalidPathNumber, [&] { joined(object, {1, number}); });
        expectError(kNativeException, kInvalidPathNumber,
                    [&] { object.call("getPaths", 2, numbers({number})); });
    }
    expectHolds(object, smallPaths());
}

TEST_F(GetPaths, refusesAnyNumberOfAnEmptySet) {
    korvex::Object empty = construct();
    expectError(kNativeException, kInvalidPathNumber, [&] { joined(empty, {1}); });
}

TEST_F(GetPaths, setsNoOutputIfItRefuses) {
    const korvex::Array self = object.toArray();
    const korvex::Array tooHigh = numbers({1, 4});
    MethodCall call("getPaths", 2);
    EXPECT_THROW(call.run({self.get(), tooHigh.get()}), std::exception);
    EXPECT_EQ(call.outputs(), (std::vector<kxArray*>{nullptr, nullptr}));
}

TEST_F(GetPaths, refusesInputsOfOtherTypes) {
    expectError("KORVEX:runtime:wrongInput", [&] { object.call("getPaths", 1, listsOf({})); });
    expectError("KORVEX:runtime:wrongInput",
                [&] { object.call("getPaths", 1, numbers({1}), numbers({47})); });
}

TEST_F(GetPaths, refusesAtTheBoundaryWhatIsNoText) {
    const korvex::Array self = object.toArray();
    const korvex::Array first = numbers({1});
    MethodCall call("getPaths", 1);
    expectHostError("KORVEX:arrays:wrongClass", {"char", "double"}, [&] {
        call.run({self.get(), first.get(), first.get()});
    });
    EXPECT_EQ(call.outputs()[0], nullptr);
}

TEST_F(GetPaths, doesNotDisturbTheWalk) {
    object.call("reset", 0);
    EXPECT_EQ(next(object), (Names{u"/", u"data", u"a.txt"}));
    EXPECT_EQ(joined(object, {3}), Names{u"/logs/x"});
    EXPECT_EQ(next(object), (Names{u"/", u"data", u"b.txt"}));
}

}  // namespace
}  // namespace binding_tests
