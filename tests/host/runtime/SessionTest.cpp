#include "host/runtime/Session.hpp"

#include <gtest/gtest.h>

#include <barrier>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "host/kobj/COSClass.hpp"
#include "tests/host/runtime/CountersTest.hpp"

namespace korvex {
namespace {

Failure failureOfLoading(const std::string& path) {
    return failureOf([&] { Session().loadLibrary(path); });
}

Failure cannotLoad(const std::string& path, const std::string& reason) {
    return refusalOf<KORVEX::runtime::cannotLoadLibrary>(path, reason);
}

using SessionTest = CountersTest;

// --- Libraries.

TEST_F(SessionTest, loadsALibraryTwiceWithoutMakingItsClassesAgain) {
    const kobj::COSClass* counter = kobj::COSClass::getClass("korvex.tests.Counter");
    session_.loadLibrary(ZQ_COUNTERS_LIBRARY);
    Session().loadLibrary(ZQ_COUNTERS_LIBRARY);
    EXPECT_EQ(kobj::COSClass::getClass("korvex.tests.Counter"), counter);
}

TEST_F(SessionTest, findsALibraryFromTheWorkingFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    const std::filesystem::path library = ZQ_COUNTERS_LIBRARY;
    std::filesystem::current_path(library.parent_path());
    EXPECT_NO_THROW(session_.loadLibrary(library.filename()));
    EXPECT_NO_THROW(session_.loadLibrary("./" + library.filename().string()));
    std::filesystem::current_path(before);
}

TEST_F(SessionTest, namesTheEntriesByTheFileNameUpToItsFirstDot) {
    const std::filesystem::path library = ZQ_COUNTERS_LIBRARY;
    const auto versioned = library.parent_path() / "libcounters.so.2.1";
    std::filesystem::remove(versioned);
    std::filesystem::create_symlink(library, versioned);
    EXPECT_NO_THROW(session_.loadLibrary(versioned));
    std::filesystem::remove(versioned);
}

TEST_F(SessionTest, terminatesItsLibrariesAtItsEnd) {
    Object counter = makeCounter();
    const auto terminations = [&] { return numberIn(counter.call("terminations", 1)[0]); };
    const double before = terminations();
    {
        Session other;
        other.loadLibrary(ZQ_COUNTERS_LIBRARY);
        EXPECT_EQ(terminations(), before);
    }
    EXPECT_EQ(terminations(), before + 1);
}

TEST_F(SessionTest, terminatesTheLibraryFirstThatWasLoadedLast) {
    {
        Session other;
        other.loadLibrary(ZQ_FIRST_LIBRARY);
        other.loadLibrary(ZQ_SECOND_LIBRARY);
    }
    EXPECT_STREQ(std::getenv("ZQ_ENDED"), "second;first;");  // NOLINT(concurrency-mt-unsafe)
    ::unsetenv("ZQ_ENDED");                                  // NOLINT(concurrency-mt-unsafe)
}

TEST_F(SessionTest, leavesClassesAndObjectsOfALibraryUsableAfterItsEnd) {
    std::vector<Object> counters;
    {
        Session other;
        other.loadLibrary(ZQ_COUNTERS_LIBRARY);
        counters.push_back(other.construct("korvex.tests.Counter", number(2)));
    }
    EXPECT_EQ(numberIn(counters[0].call("add", 1, number(1))[0]), 3.0);
}

TEST_F(SessionTest, refusesAFileThatIsNotThere) {
    EXPECT_EQ(failureOfLoading("/no/such/libcounters.so"),
              cannotLoad("/no/such/libcounters.so", "there is no such file"));
    EXPECT_EQ(failureOfLoading("libc.so.6"), cannotLoad("libc.so.6", "there is no such file"));
    EXPECT_EQ(failureOfLoading(""), cannotLoad("", "there is no such file"));
}

TEST_F(SessionTest, refusesAFileThatIsNoLibrary) {
    const std::string page = ZQ_SOURCE_DIR "/README.md";
    const Failure failure = failureOfLoading(page);
    EXPECT_EQ(failure.identifier, "KORVEX:runtime:cannotLoadLibrary");
    EXPECT_NE(failure.text.find("invalid ELF header"), std::string::npos) << failure.text;
}

TEST_F(SessionTest, refusesALibraryWithoutEntries) {
    EXPECT_EQ(failureOfLoading(ZQ_ENTRYLESS_LIBRARY),
              cannotLoad(ZQ_ENTRYLESS_LIBRARY, "it has no entry KVInitialize_libentryless"));
}

TEST_F(SessionTest, refusesALibraryThatCannotBeInitialized) {
    EXPECT_EQ(failureOfLoading(ZQ_FAILING_LIBRARY),
              cannotLoad(ZQ_FAILING_LIBRARY, "no licence for the tests"));
}

TEST_F(SessionTest, canBeHadByEachThread) {
    constexpr int kThreads = 16;
    std::vector<double> totals(kThreads);
    std::barrier start(kThreads);
    {
        std::vector<std::jthread> threads;
        threads.reserve(kThreads);
        for (double& total : totals) {
            threads.emplace_back([&start, &total] {
                start.arrive_and_wait();
                Session session;
                session.loadLibrary(ZQ_COUNTERS_LIBRARY);
                Object counter = session.construct("korvex.tests.Counter", number(1));
                total = numberIn(counter.call("add", 1, number(2))[0]);
            });
        }
    }
    EXPECT_EQ(totals, std::vector(kThreads, 3.0));
}

// --- Construction.

TEST_F(SessionTest, constructsAnObjectWithItsInputs) {
    const Object counter = session_.construct("korvex.tests.Counter", number(5), text(u"kg"));
    EXPECT_EQ(numberIn(counter.get("Total")), 5.0);
    EXPECT_EQ(kxGetCharacters(counter.get("Unit").get()), u"kg");
}

TEST_F(SessionTest, constructsAnObjectWithoutOptionalInputs) {
    EXPECT_EQ(numberIn(makeCounter().get("Total")), 0.0);
}

TEST_F(SessionTest, convertsTheInputsOfAConstructor) {
    const Object counter = makeCounter(bytes(std::vector<std::uint8_t>{8}));
    EXPECT_EQ(numberIn(counter.get("Total")), 8.0);
}

TEST_F(SessionTest, tellsWhichInputOfAConstructorIsWrong) {
    EXPECT_EQ(failureOf([&] { makeCounter(number(1), number(2)); }),
              refusalOf<KORVEX::runtime::wrongInput>("Counter", "unit", "char", "double"));
    EXPECT_EQ(failureOf([&] { makeCounter(number(1), text(u""), number(2)); }).identifier,
              "KORVEX:matrix:tooManyInputs");
}

TEST_F(SessionTest, freesAnObjectWhoseConstructionFails) {
    const auto before = foundation::core::liveObjects();
    EXPECT_EQ(failureOf([&] { makeCounter(number(-1)); }),
              (Failure{"KORVEX:tests:negativeTotal", "a total cannot be -1"}));
    EXPECT_EQ(foundation::core::liveObjects(), before);
}

TEST_F(SessionTest, constructsNoObjectOfAnUnknownClass) {
    const Failure unknown = refusalOf<KORVEX::kobj::noSuchClass>("korvex.tests.Clock");
    EXPECT_EQ(failureOf([&] { session_.construct("korvex.tests.Clock"); }), unknown);
    EXPECT_EQ(failureOf([&] { session_.load("korvex.tests.Clock", Array()); }), unknown);
}

TEST_F(SessionTest, constructsNoObjectOfAClassWithoutConstructor) {
    EXPECT_EQ(failureOf([&] { session_.construct("korvex.tests.Bare"); }),
              refusalOf<KORVEX::kobj::noSuchMethod>("korvex.tests.Bare", "Bare"));
}

// --- Loading.

TEST_F(SessionTest, loadsAnObjectFromWhatWasSaved) {
    const Array saved = makeCounter(number(3), text(u"km")).save({"total", "unit"});
    const Object loaded = session_.load("korvex.tests.Counter", saved);
    EXPECT_EQ(numberIn(loaded.get("Total")), 3.0);
    EXPECT_EQ(kxGetCharacters(loaded.get("Unit").get()), u"km");
}

TEST_F(SessionTest, tellsAnObjectThatItHasBeenLoaded) {
    const Array saved = makeCounter().save({"total", "unit"});
    EXPECT_EQ(numberIn(makeCounter().get("WasLoaded")), 0.0);
    EXPECT_EQ(numberIn(session_.load("korvex.tests.Counter", saved).get("WasLoaded")), 1.0);
}

TEST_F(SessionTest, tellsTheTypeOfWhatWasSaved) {
    const Object fromNumber = session_.load("korvex.tests.Counter", number(1));
    EXPECT_EQ(kxGetCharacters(fromNumber.get("Unit").get()), u"double");
    const Object fromNothing = session_.load("korvex.tests.Counter", Array());
    EXPECT_EQ(kxGetCharacters(fromNothing.get("Unit").get()), u"");
}

TEST_F(SessionTest, freesAnObjectThatCannotBeLoaded) {
    Array saved(kxCreateStructure({1, 1}, {"total", "unit"}));
    kxReplaceField(saved.get(), 0, "total", number(-4).release());
    const auto before = foundation::core::liveObjects();
    EXPECT_EQ(failureOf([&] { session_.load("korvex.tests.Counter", saved); }),
              (Failure{"KORVEX:tests:negativeTotal", "a total cannot be -4"}));
    EXPECT_EQ(foundation::core::liveObjects(), before);
}

TEST_F(SessionTest, letsAnObjectKeepWhatItWasLoadedFrom) {
    Array saved = text(u"Dear all");
    Object letter = session_.load("korvex.tests.Letter", saved);
    saved = Array();
    EXPECT_EQ(kxGetCharacters(letter.save({}).get()), u"Dear all");
}

TEST_F(SessionTest, copiesWhatItLoadsFromUnlessItIsMovedIn) {
    Array saved = text(u"Dear all");
    const std::size_t arrays = foundation::core::liveObjects().arrays;
    const Object copied = session_.load("korvex.tests.Letter", saved);
    EXPECT_EQ(foundation::core::liveObjects().arrays, arrays + 1);
    const Object moved = session_.load("korvex.tests.Letter", std::move(saved));
    EXPECT_EQ(foundation::core::liveObjects().arrays, arrays + 1);
}

}  // namespace
}  // namespace korvex
