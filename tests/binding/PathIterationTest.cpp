// reset, hasNextPath and getNextPath.

#include <gtest/gtest.h>

#include "tests/binding/BindingTest.hpp"
#include "tests/binding/MethodCall.hpp"

namespace binding_tests {
namespace {

class PathIteration : public BindingTest {
protected:
    PathIteration() : object(holding(smallListing())), self(object.toArray()) {}

    korvex::Object object;
    korvex::Array self;
};

const Lists kSmallWalk{{u"/", u"data", u"a.txt"}, {u"/", u"data", u"b.txt"}, {u"/", u"logs", u"x"}};

TEST_F(PathIteration, givesAllPathsAsComponents) {
    EXPECT_EQ(walked(object), kSmallWalk);
}

TEST_F(PathIteration, takesFoldersInTheOrderOfTheirFirstPath) {
    add(object, {{{u"/", u"data"}, {u"a"}}, {{u"t"}, {u"b"}}});
    EXPECT_EQ(walked(object), (Lists{{u"/", u"data", u"a.txt"},
                                     {u"/", u"data", u"b.txt"},
                                     {u"/", u"data", u"t"},
                                     {u"/", u"logs", u"x"},
                                     {u"a", u"b"}}));
}

TEST_F(PathIteration, hasNothingBeforeTheFirstReset) {
    EXPECT_FALSE(hasNext(object));
    expectError(kNativeException, kNoMorePath, [&] { next(object); });
}

TEST_F(PathIteration, hasNothingInAnEmptySet) {
    korvex::Object empty = construct();
    EXPECT_FALSE(hasNext(empty));
    empty.call("reset", 0);
    EXPECT_FALSE(hasNext(empty));
    expectError(kNativeException, kNoMorePath, [&] { next(empty); });
}

TEST_F(PathIteration, endsBehindTheLastPath) {
    EXPECT_EQ(walked(object).size(), 3U);
    EXPECT_FALSE(hasNext(object));
    expectError(kNativeException, kNoMorePath, [&] { next(object); });
    EXPECT_FALSE(hasNext(object));
}

TEST_F(PathIteration, startsAnewAfterReset) {
    EXPECT_EQ(walked(object), kSmallWalk);
    object.call("reset", 0);
    EXPECT_TRUE(hasNext(object));
    EXPECT_EQ(next(object), kSmallWalk[0]);
    EXPECT_EQ(walked(object), kSmallWalk);
}

TEST_F(PathIteration, asksWithoutGoingOn) {
    object.call("reset", 0);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(hasNext(object));
    EXPECT_EQ(next(object), kSmallWalk[0]);
}

TEST_F(PathIteration, keepsAPlaceForEachObject) {
    korvex::Object other = construct(text(u"copy"), self);
    object.call("reset", 0);
    EXPECT_FALSE(hasNext(other));
    other.call("reset", 0);
    EXPECT_EQ(next(object), kSmallWalk[0]);
    EXPECT_EQ(next(other), kSmallWalk[0]);
    EXPECT_EQ(next(object), kSmallWalk[1]);
    EXPECT_EQ(next(other), kSmallWalk[1]);
}

TEST_F(PathIteration, goesOnThroughSaving) {
    object.call("reset", 0);
    EXPECT_EQ(next(object), kSmallWalk[0]);
    object.call("serialize", 2);
    EXPECT_EQ(next(object), kSmallWalk[1]);
}

TEST_F(PathIteration, givesAPathAlsoWhenNoOutputIsWanted) {
    object.call("reset", 0);
    MethodCall call("getNextPath", 0);
    call.run({self.get()});
    ASSERT_NE(call.outputs()[0], nullptr);
    EXPECT_EQ(namesIn(call.outputs()[0]), kSmallWalk[0]);
    EXPECT_EQ(next(object), kSmallWalk[1]);
}

TEST_F(PathIteration, setsNoOutputBehindTheLastPath) {
    walked(object);
    MethodCall call("getNextPath", 1);
    EXPECT_THROW(call.run({self.get()}), std::exception);
    EXPECT_EQ(call.outputs()[0], nullptr);
}

TEST_F(PathIteration, answersWithALogicalScalarHoweverFewOutputsAreWanted) {
    for (const bool isStarted : {false, true}) {
        if (isStarted) object.call("reset", 0);
        for (const std::int32_t wanted : {0, 1}) {
            MethodCall call("hasNextPath", wanted);
            call.run({self.get()});
            EXPECT_EQ(call.outputCount(), 1);
            ASSERT_NE(call.outputs()[0], nullptr);
            EXPECT_EQ(kxGetClass(call.outputs()[0]), kxClass::kLogical);
            EXPECT_EQ(dimensionsOf(call.outputs()[0]), (kxDimensions{1, 1}));
            EXPECT_EQ(kxGetNumber(call.outputs()[0], 0), isStarted ? 1 : 0);
        }
    }
}

TEST_F(PathIteration, answersAHostProgramThatWantsNoOutput) {
    object.call("reset", 0);
    const auto outputs = object.call("hasNextPath", 0);
    ASSERT_EQ(outputs.size(), 1U);
    EXPECT_EQ(kxGetNumber(outputs[0].get(), 0), 1);
}

TEST_F(PathIteration, refusesToAnswerForANegativeNumberOfOutputs) {
    for (const std::int32_t wanted : {-1, std::numeric_limits<std::int32_t>::min()}) {
        MethodCall call("hasNextPath", wanted);
        expectHostError("KORVEX:matrix:invalidOutputCount", {}, [&] { call.run({self.get()}); });
        EXPECT_EQ(call.outputs()[0], nullptr);
        EXPECT_EQ(call.outputCount(), wanted);
    }
}

TEST_F(PathIteration, isNotResetByACallThatIsRefused) {
    object.call("reset", 0);
    EXPECT_EQ(next(object), kSmallWalk[0]);
    expectError("KORVEX:matrix:tooManyOutputs", [&] { object.call("reset", 1); });
    EXPECT_EQ(next(object), kSmallWalk[1]);
}

TEST_F(PathIteration, isNotMovedByACallThatIsRefused) {
    object.call("reset", 0);
    expectError("KORVEX:matrix:tooManyOutputs", [&] { object.call("getNextPath", 2); });
    expectError("KORVEX:matrix:tooManyInputs", [&] { object.call("getNextPath", 1, self); });
    EXPECT_EQ(next(object), kSmallWalk[0]);
}

}  // namespace
}  // namespace binding_tests
