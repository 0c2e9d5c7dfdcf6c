// As many host objects are freed as were made. Each test of the library checks that at its end;
// these take the ways on which it is easiest to forget one.

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

#include "host/kobj/ObjectSystem.hpp"
#include "tests/binding/BindingTest.hpp"
#include "tests/binding/MethodCall.hpp"
#include "tests/binding/StandardOutput.hpp"

namespace binding_tests {
namespace {

using foundation::core::LiveObjects;
using foundation::core::liveObjects;

class LiveObjectCounts : public BindingTest {
protected:
    /// Fails the test unless `call` throws and leaves no object alive.
    template <class Call>
    static void expectLeavesNothing(Call call) {
        const LiveObjects before = liveObjects();
        EXPECT_THROW(call(), korvex::Error);
        EXPECT_TRUE(liveObjects() == before);
    }
};

TEST_F(LiveObjectCounts, riseAndFallWithObjects) {
    const LiveObjects before = liveObjects();
    {
        korvex::Object object = holding(smallListing());
        korvex::Object same = object;
        EXPECT_EQ(walked(same), walked(object));
        EXPECT_EQ(liveObjects().interfaces, before.interfaces + 1);
        EXPECT_EQ(liveObjects().instances, before.instances + 1);
    }
    EXPECT_TRUE(liveObjects() == before);
}

TEST_F(LiveObjectCounts, countObjectsInArrays) {
    const LiveObjects before = liveObjects();
    korvex::Array array = holding(smallListing()).toArray();
    EXPECT_EQ(liveObjects().instances, before.instances + 1);
    array = korvex::Array();
    EXPECT_TRUE(liveObjects() == before);
}

TEST_F(LiveObjectCounts, fallAfterAFailedConstruction) {
    const korvex::Array files = text(u"files");
    const korvex::Array frequencies = text(u"frequencies");
    const korvex::Array tree = text(u"tree");
    const korvex::Array two = numbers({1, 2});
    const korvex::Array odd = namesOf({u"ab"});
    const korvex::Array one = listsOf({{u"a"}, {u"a"}});
    const korvex::Array characters = text(u"abc");
    expectLeavesNothing([&] { construct(files, odd); });
    expectLeavesNothing([&] { construct(files, one); });
    expectLeavesNothing([&] { construct(files, two); });
    expectLeavesNothing([&] { construct(frequencies, characters, two); });
    expectLeavesNothing([&] { construct(frequencies, characters, characters); });
    expectLeavesNothing([&] { construct(text(u"copy"), two); });
    expectLeavesNothing(
        [&] { construct(tree, characters, korvex::bytes(std::vector<std::uint8_t>{1}), two); });
    expectLeavesNothing([&] { construct(two); });
    expectLeavesNothing([&] { construct(files, one, one, one, one); });
}

TEST_F(LiveObjectCounts, fallAfterAFailedMethod) {
    korvex::Object object = holding(smallListing());
    const korvex::Array bad = numbers({1, 99});
    const korvex::Array separator = text(u"/");
    expectLeavesNothing([&] { object.call("getPaths", 2, bad); });
    expectLeavesNothing([&] { object.call("getPaths", 1, bad, separator); });
    expectLeavesNothing([&] { object.call("getNextPath", 1); });
    expectLeavesNothing([&] { add(object, {{{u"/"}, {u""}}, {{u"a"}, {u"b"}}}); });
    expectLeavesNothing([&] { add(object, {{{u"/"}}, {{u"Z"}}}); });
    expectLeavesNothing([&] { object.call("reset", 1); });
}

TEST_F(LiveObjectCounts, fallAfterAFailedLoad) {
    const LiveObjects before = liveObjects();
    korvex::Array stored(kxCreateStructure({1, 1}, {"StringTree", "PathTree"}));
    kxReplaceField(stored.get(), 0, "StringTree", text(u"ab").release());
    kxReplaceField(stored.get(), 0, "PathTree", numbers({1, 2}).release());
    EXPECT_NE(standardOutputOf([&] { session.load(kClassName, stored); }), "");
    stored = korvex::Array();
    EXPECT_TRUE(liveObjects() == before);
}

TEST_F(LiveObjectCounts, fallWithWhatIsMadeThoughNobodyWantsIt) {
    korvex::Object object = holding(smallListing());
    object.call("reset", 0);
    const LiveObjects before = liveObjects();
    object.call("getNextPath", 0);
    object.call("hasNextPath", 0);
    object.call("serialize", 0);
    object.call("getPaths", 1, numbers({1, 2, 3}));
    EXPECT_TRUE(liveObjects() == before);
}

TEST_F(LiveObjectCounts, fallToNoneWhenTheHostForgetsItsClasses) {
    // The class cannot be registered a second time in a process, so this needs one of its own.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            holding(smallListing());
            const bool isClassThere = liveObjects().classInfos > 0;
            kobj::omReset();
            const bool isNothingLeft = liveObjects() == LiveObjects{};
            std::exit(isClassThere && isNothingLeft ? EXIT_SUCCESS : EXIT_FAILURE);
        },
        ::testing::ExitedWithCode(EXIT_SUCCESS), "");
}

}  // namespace
}  // namespace binding_tests
