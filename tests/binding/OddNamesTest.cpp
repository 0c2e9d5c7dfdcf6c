// Names of all kinds come back as they went in: by number and from the walk, from the object that
// took them and from one that was loaded.

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include "tests/binding/BindingTest.hpp"

namespace binding_tests {
namespace {

/// Each folder followed by each of its files, as components.
Lists componentsOf(const Listing& listing) {
    Lists paths;
    for (std::size_t i = 0; i < listing.folders.size(); ++i) {
        for (const std::u16string& file : listing.files[i]) {
            paths.push_back(listing.folders[i]);
            paths.back().push_back(file);
        }
    }
    return paths;
}

class OddNames : public BindingTest {
protected:
    /// All paths by number, as components.
    static Lists fetched(korvex::Object& object, std::size_t count) {
        std::vector<double> pathNumbers(count);
        std::iota(pathNumbers.begin(), pathNumbers.end(), 1.0);
        const auto parts = object.call("getPaths", 2, numbers(pathNumbers));
        return componentsOf({listsIn(parts.at(0).get()), listsIn(parts.at(1).get())});
    }

    /// What `listing` gives back, from the object that took it and from one that was loaded.
    std::vector<Lists> givenBack(const Listing& listing) {
        korvex::Object object = holding(listing);
        korvex::Object loaded = session.load(kClassName, object.save({"StringTree", "PathTree"}));
        const std::size_t count = componentsOf(listing).size();
        return {fetched(object, count), walked(object), fetched(loaded, count), walked(loaded)};
    }

    void expectGivenBack(const Listing& listing) {
        EXPECT_EQ(givenBack(listing), std::vector<Lists>(4, componentsOf(listing)));
    }
};

TEST_F(OddNames, comeBackWithPairsOfSurrogates) {
    expectGivenBack(
        {{{u"\U0001F600", u"\U0010FFFF"}}, {{u"\U0001F600\U0001F601", u"a\U00010000"}}});
}

TEST_F(OddNames, comeBackWithSurrogatesAlone) {
    expectGivenBack({{{u"\xD800"}, {u"\xDC00\xD800"}}, {{u"\xDFFF", u"\xDBFF"}, {u"a\xDC00z"}}});
}

TEST_F(OddNames, comeBackWithEveryKindOfSpaceAndControl) {
    expectGivenBack(
        {{{std::u16string(1, u'\0')}}, {{std::u16string(u"\0a\0", 3), u"\n", u" ", u"\x7F"}}});
}

TEST_F(OddNames, comeBackWithTheLastCodeUnits) {
    expectGivenBack({{{u"\xFFFF"}}, {{u"\xFFFE\xFEFF", u"\xFFFD"}}});
}

TEST_F(OddNames, comeBackWithSixtyFourThousandCharacters) {
    std::u16string all(65536, u'\0');
    std::iota(all.begin(), all.end(), u'\0');
    expectGivenBack({{{all, std::u16string(65536, u'x')}}, {{all, std::u16string(65537, u'y')}}});
}

TEST_F(OddNames, comeBackFromFoldersAThousandLevelsDeep) {
    expectGivenBack({{Names(1000, u"d")}, {{u"a", u"b"}}});
}

TEST_F(OddNames, comeBackAsOftenAsTheyAreAdded) {
    expectGivenBack({{{u"a"}}, {{u"b", u"b", u"b"}}});
}

TEST_F(OddNames, comeBackWhateverTheyAre) {
    const auto unit = rc::gen::map(rc::gen::inRange(0, 0x10000),
                                   [](int value) { return static_cast<char16_t>(value); });
    const auto name = rc::gen::nonEmpty(rc::gen::container<std::u16string>(unit));
    const auto names = rc::gen::nonEmpty(rc::gen::container<Names>(name));
    const auto lists = rc::gen::resize(8, rc::gen::nonEmpty(rc::gen::container<Lists>(names)));
    EXPECT_TRUE(rc::check("names of any code units come back", [&] {
        Listing listing;
        listing.folders = *lists;
        // Folders of their own, so that the walk takes them in the order of adding.
        for (std::size_t i = 0; i < listing.folders.size(); ++i) {
            listing.folders[i].insert(listing.folders[i].begin(),
                                      std::u16string{u'f', static_cast<char16_t>(i)});
            listing.files.push_back(*rc::gen::resize(8, names));
        }
        RC_ASSERT(givenBack(listing) == std::vector<Lists>(4, componentsOf(listing)));
    }));
}

}  // namespace
}  // namespace binding_tests
