// serialize: its two outputs, and that an object comes back from them.

#include <gtest/gtest.h>

#include "tests/binding/BindingTest.hpp"
#include "tests/binding/MethodCall.hpp"

namespace binding_tests {
namespace {

class Serialize : public BindingTest {
protected:
    Serialize() : object(holding(smallListing())), self(object.toArray()) {}

    korvex::Object object;
    korvex::Array self;
};

TEST_F(Serialize, givesTheTreeStringAndTheBytesOfTheSet) {
    const auto outputs = object.call("serialize", 2);
    ASSERT_EQ(outputs.size(), 2U);
    EXPECT_EQ(nameIn(outputs[0].get()), nameIn(object.get("StringTree").get()));
    EXPECT_EQ(kxGetClass(outputs[1].get()), kxClass::kUint8);
    const std::size_t byteCount = kxGetNumberOfElements(outputs[1].get());
    EXPECT_GT(byteCount, 0U);
    EXPECT_EQ(dimensionsOf(outputs[1].get()), (kxDimensions{byteCount, 1}));
}

TEST_F(Serialize, givesTheTreeStringAloneIfOneOutputOrNoneIsWanted) {
    for (const std::int32_t wanted : {0, 1, -1}) {
        MethodCall call("serialize", wanted);
        call.run({self.get()});
        ASSERT_NE(call.outputs()[0], nullptr);
        EXPECT_EQ(nameIn(call.outputs()[0]), nameIn(object.get("StringTree").get()));
        EXPECT_EQ(call.outputs()[1], nullptr);
    }
}

TEST_F(Serialize, givesTheSameBytesEachTime) {
    EXPECT_EQ(savedBytes(object), savedBytes(object));
}

TEST_F(Serialize, givesBytesThatAreRestored) {
    const auto saved = object.call("serialize", 2);
    korvex::Object restored = construct(text(u"tree"), saved[0], saved[1], numbers({}));
    expectHolds(restored, smallPaths());
    EXPECT_EQ(walked(restored), walked(object));
    EXPECT_EQ(savedBytes(restored), bytesIn(saved[1].get()));
}

TEST_F(Serialize, givesOutputsThatOutliveTheObject) {
    const auto saved = [&] {
        korvex::Object passing = holding({{{u"a"}}, {{u"b"}}});
        return passing.call("serialize", 2);
    }();
    korvex::Object restored = construct(text(u"tree"), saved[0], saved[1], numbers({}));
    expectHolds(restored, {u"ab"});
}

TEST_F(Serialize, savesAnEmptyObject) {
    korvex::Object empty = construct();
    const auto saved = empty.call("serialize", 2);
    EXPECT_EQ(dimensionsOf(saved[0].get()), (kxDimensions{1, 0}));
    EXPECT_EQ(kxGetClass(saved[1].get()), kxClass::kUint8);
    korvex::Object restored = construct(text(u"tree"), saved[0], saved[1], numbers({}));
    expectIsEmpty(restored);
}

TEST_F(Serialize, savesAnObjectWithoutPaths) {
    korvex::Object noPaths = codingCharacters(u"abc");
    const auto saved = noPaths.call("serialize", 2);
    korvex::Object restored = construct(text(u"tree"), saved[0], saved[1], numbers({}));
    expectHolds(restored, {});
    add(restored, {{{u"a"}}, {{u"bc"}}});
    expectHolds(restored, {u"abc"});
}

TEST_F(Serialize, savesTheTreeStringThatWasSet) {
    object.set("StringTree", text(u"another"));
    EXPECT_EQ(nameIn(object.call("serialize", 1).at(0).get()), u"another");
}

}  // namespace
}  // namespace binding_tests
