// Loading an object from what was stored: what restores it, what leaves it empty, and that a failed
// load says so and succeeds.

#include <gtest/gtest.h>

#include <optional>

#include "tests/binding/BindingTest.hpp"
#include "tests/binding/MethodCall.hpp"
#include "tests/binding/StandardOutput.hpp"

namespace binding_tests {
namespace {

constexpr const char* kMessage = "Error while custom loading CompressedFileSet.\n";

class CustomLoad : public BindingTest {
protected:
    CustomLoad() : saved(holding(smallListing()).call("serialize", 2)) {}

    static korvex::Array duplicate(const korvex::Array& array) {
        return korvex::Array(kxDuplicateArray(array.get()));
    }

    /// Puts the fields of element 1 in place.
    static korvex::Array filled(kxArray* structure, korvex::Array treeString,
                                korvex::Array pathTree) {
        korvex::Array result(structure);
        kxReplaceField(structure, 0, "StringTree", treeString.release());
        kxReplaceField(structure, 0, "PathTree", pathTree.release());
        return result;
    }

    static korvex::Array structureOf(korvex::Array treeString, korvex::Array pathTree) {
        return filled(kxCreateStructure({1, 1}, {"StringTree", "PathTree"}), std::move(treeString),
                      std::move(pathTree));
    }

    /// Loads, and fails the test unless just `message` is written meanwhile.
    korvex::Object load(const korvex::Array& stored, const std::string& message) {
        std::optional<korvex::Object> loaded;
        EXPECT_EQ(standardOutputOf([&] { loaded = session.load(kClassName, stored); }), message);
        return loaded.value();
    }

    void expectLoadsEmpty(const korvex::Array& stored) {
        korvex::Object loaded = load(stored, "");
        expectIsEmpty(loaded);
    }

    void expectLoads(const korvex::Array& stored) {
        korvex::Object loaded = load(stored, "");
        expectHolds(loaded, smallPaths());
    }

    const std::vector<korvex::Array> saved;
};

TEST_F(CustomLoad, restoresWhatTheHostHasSaved) {
    korvex::Object object = holding(smallListing());
    const korvex::Array stored = object.save({"StringTree", "PathTree"});
    korvex::Object loaded = load(stored, "");
    expectHolds(loaded, smallPaths());
    EXPECT_EQ(walked(loaded), walked(object));
    EXPECT_EQ(savedBytes(loaded), savedBytes(object));
    EXPECT_EQ(nameIn(loaded.get("StringTree").get()), nameIn(object.get("StringTree").get()));
}

TEST_F(CustomLoad, restoresAnObjectThatGoesOn) {
    korvex::Object loaded = load(structureOf(duplicate(saved[0]), duplicate(saved[1])), "");
    add(loaded, {{{u"/", u"data"}}, {{u"t"}}});
    Names paths = smallPaths();
    paths.emplace_back(u"/data/t");
    expectHolds(loaded, paths);
}

TEST_F(CustomLoad, takesNoFrequencies) {
    korvex::Object loaded = load(structureOf(duplicate(saved[0]), duplicate(saved[1])), "");
    EXPECT_EQ(numbersIn(loaded.get("Frequencies").get()), std::vector<double>());
}

TEST_F(CustomLoad, takesFieldsInAnyOrderAmongOthers) {
    expectLoads(filled(kxCreateStructure({1, 1}, {"Other", "PathTree", "StringTree"}),
                       duplicate(saved[0]), duplicate(saved[1])));
}

TEST_F(CustomLoad, takesTheFirstElementOfAStructureArray) {
    expectLoads(filled(kxCreateStructure({3, 2}, {"StringTree", "PathTree"}), duplicate(saved[0]),
                       duplicate(saved[1])));
}

TEST_F(CustomLoad, takesAnObjectWithFieldsLikeAStructure) {
    expectLoads(filled(kxCreateObjectWithFields(kClassName, {1, 1}, {"StringTree", "PathTree"}),
                       duplicate(saved[0]), duplicate(saved[1])));
}

TEST_F(CustomLoad, takesBytesOfAnyShape) {
    const std::vector<std::uint8_t> bytes = bytesIn(saved[1].get());
    korvex::Array row(kxCreateNumeric(kxClass::kUint8, {1, bytes.size()}));
    std::copy(bytes.begin(), bytes.end(), kxGetData<std::uint8_t>(row.get()).begin());
    expectLoads(structureOf(duplicate(saved[0]), std::move(row)));
}

TEST_F(CustomLoad, leavesWhatWasStoredAsItWas) {
    const korvex::Array stored = structureOf(duplicate(saved[0]), duplicate(saved[1]));
    expectLoads(stored);
    expectLoads(stored);
}

TEST_F(CustomLoad, leavesTheObjectEmptyForAnEmptyTreeString) {
    expectLoadsEmpty(structureOf(text(u""), duplicate(saved[1])));
    expectLoadsEmpty(structureOf(numbers({}), duplicate(saved[1])));
    expectLoadsEmpty(structureOf(korvex::Array(), duplicate(saved[1])));
    expectLoadsEmpty(structureOf(text(u""), text(u"no bytes")));
}

TEST_F(CustomLoad, leavesTheObjectEmptyWithoutAPathTree) {
    korvex::Array stored(kxCreateStructure({1, 1}, {"StringTree", "pathTree"}));
    kxReplaceField(stored.get(), 0, "StringTree", kxDuplicateArray(saved[0].get()));
    expectLoadsEmpty(stored);
    expectLoadsEmpty(korvex::Array(kxCreateStructure({1, 1}, {})));
}

TEST_F(CustomLoad, leavesTheObjectEmptyForWhatIsNoStructure) {
    expectLoadsEmpty(text(u"PathTree"));
    expectLoadsEmpty(numbers({1, 2}));
    expectLoadsEmpty(duplicate(saved[1]));
    expectLoadsEmpty(namesOf({u"StringTree", u"PathTree"}));
    expectLoadsEmpty(holding(smallListing()).toArray());
}

TEST_F(CustomLoad, leavesTheObjectEmptyIfNothingWasStored) {
    kobj::COSInterfacePtr object = newObject();
    const kobj::COSValue nothing;
    EXPECT_EQ(standardOutputOf([&] {
                  boundClass().getClassInfo().customLoad(object, nothing,
                                                         kobj::COSDataType::of(nothing));
              }),
              "");
    korvex::Object loaded(object);
    expectIsEmpty(loaded);
}

TEST_F(CustomLoad, keepsTheInstanceOfTheObject) {
    kobj::COSInterfacePtr object = newObject();
    void* const instance = object->getInstanceData(kClassName);
    const kobj::COSValue stored(
        kxArrayPtr(structureOf(duplicate(saved[0]), duplicate(saved[1])).release()));
    boundClass().getClassInfo().customLoad(object, stored, kobj::COSDataType::of(stored));
    EXPECT_EQ(object->getInstanceData(kClassName), instance);
    korvex::Object loaded(object);
    expectHolds(loaded, smallPaths());
}

TEST_F(CustomLoad, saysOnceThatItFailedAndSucceeds) {
    korvex::Object loaded =
        load(structureOf(duplicate(saved[0]), korvex::bytes(std::vector<std::uint8_t>{1, 2, 3})),
             kMessage);
    expectError(kNativeException, kInvalidPathNumber, [&] { joined(loaded, {1}); });
}

TEST_F(CustomLoad, saysSoForBytesThatEndAnywhere) {
    const std::vector<std::uint8_t> whole = bytesIn(saved[1].get());
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        load(structureOf(duplicate(saved[0]), korvex::bytes(std::span(whole.data(), length))),
             kMessage);
    }
}

TEST_F(CustomLoad, saysSoForAFieldThatIsMissing) {
    korvex::Array stored(kxCreateStructure({1, 1}, {"PathTree"}));
    kxReplaceField(stored.get(), 0, "PathTree", kxDuplicateArray(saved[1].get()));
    load(stored, kMessage);
}

TEST_F(CustomLoad, saysSoForAStructureWithoutElements) {
    load(korvex::Array(kxCreateStructure({0, 0}, {"StringTree", "PathTree"})), kMessage);
}

TEST_F(CustomLoad, saysSoForFieldsOfOtherClasses) {
    load(structureOf(numbers({1, 2}), duplicate(saved[1])), kMessage);
    load(structureOf(duplicate(saved[0]), numbers({1, 2})), kMessage);
    load(structureOf(duplicate(saved[0]), korvex::Array()), kMessage);
}

TEST_F(CustomLoad, saysSoForATreeStringThatIsTooShort) {
    load(structureOf(text(u"a"), duplicate(saved[1])), kMessage);
}

}  // namespace
}  // namespace binding_tests
