// Lack of memory at every step of what a host program asks for: an error, no object of the host
// left over, the object as it was, and the answer as soon as there is memory again.

#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/binding/BindingTest.hpp"
#include "tests/binding/StandardOutput.hpp"
#include "tests/support/FailingHeap.hpp"

namespace binding_tests {
namespace {

using foundation::core::LiveObjects;
using foundation::core::liveObjects;
using Refused = FailingHeap::Refused;

/// A call with one block of memory refused, or all from one on.
struct Attempt {
    std::size_t number;  // of the block
    Refused way;
    bool hasRefused = false;

    /// Whether `call` came to its end. The host says all else by an error of its own, or, where
    /// there is no memory even for that, the language does.
    template <class Call>
    bool isAnswered(Call call) {
        const FailingHeap heap(number, way);
        bool hasEnded = false;
        try {
            call();
            hasEnded = true;
        } catch (const korvex::Error&) {
        } catch (const std::bad_alloc&) {
        }
        hasRefused = heap.hasRefused();
        return hasEnded;
    }
};

/// Makes `attempt` with each block refused in turn, until it asks for none that is. Returns how
/// often it was not answered.
std::size_t refuseEachBlock(const std::function<bool(Attempt&)>& isAnswered) {
    constexpr std::size_t kMostBlocks = 10'000;  // a call that asks for more does not end
    std::size_t failures = 0;
    for (const Refused way : {Refused::kOne, Refused::kAllAfter}) {
        Attempt attempt{0, way, true};
        while (attempt.hasRefused && attempt.number < kMostBlocks &&
               !::testing::Test::HasFailure()) {
            ++attempt.number;
            SCOPED_TRACE(attempt.number);
            if (!isAnswered(attempt)) ++failures;
        }
        EXPECT_FALSE(attempt.hasRefused);
    }
    return failures;
}

/// What an output holds, whatever its shape.
struct Content {
    kxClass elementClass = kxClass::kDouble;
    kxDimensions dimensions;
    std::u16string characters;
    std::vector<double> numbers;
    std::vector<std::uint8_t> bytes;
    std::vector<Content> elements;

    bool operator==(const Content&) const = default;
};

Content contentOf(const kxArray* array) {
    Content content{kxGetClass(array), dimensionsOf(array), {}, {}, {}, {}};
    switch (content.elementClass) {
        case kxClass::kCharacter:
            content.characters = kxGetCharacters(array);
            break;
        case kxClass::kDouble:
            content.numbers = numbersIn(array);
            break;
        case kxClass::kUint8:
            content.bytes = bytesIn(array);
            break;
        case kxClass::kCell:
            for (std::size_t i = 0; i < kxGetNumberOfElements(array); ++i)
                content.elements.push_back(contentOf(kxGetCell(array, i)));
            break;
        default:
            break;
    }
    return content;
}

std::vector<Content> contentsOf(const std::vector<korvex::Array>& outputs) {
    std::vector<Content> contents;
    for (const korvex::Array& output : outputs)
        if (output) contents.push_back(contentOf(output.get()));
    return contents;
}

class FailingCalls : public BindingTest {
protected:
    using Outputs = std::vector<korvex::Array>;
    using Call = std::function<Outputs(korvex::Object&)>;
    using Make = std::function<korvex::Object()>;

    /// All that can be seen of an object.
    struct Seen {
        std::vector<Content> saved;
        std::u16string treeString;
        std::vector<double> frequencies;
        Lists rest;  // of the walk

        bool operator==(const Seen&) const = default;
    };
    static Seen seen(korvex::Object& object) {
        Seen all{contentsOf(object.call("serialize", 2)),
                 nameIn(object.get("StringTree").get()),
                 numbersIn(object.get("Frequencies").get()),
                 {}};
        while (hasNext(object)) all.rest.push_back(next(object));
        return all;
    }

    static Outputs outputOf(korvex::Array array) {
        Outputs outputs;
        outputs.push_back(std::move(array));
        return outputs;
    }

    /// Three paths, in the midst of a walk.
    korvex::Object walking() {
        korvex::Object object = holding(smallListing());
        object.call("reset", 0);
        next(object);
        return object;
    }

    /// A call that failed has changed nothing: the next one has the answer, and leaves the object,
    /// as if it were the first.
    void expectFailsWithoutChange(const Call& call) {
        korvex::Object model = walking();
        const std::vector<Content> answer = contentsOf(call(model));
        const Seen after = seen(model);
        const std::size_t failures = refuseEachBlock([&](Attempt& attempt) {
            korvex::Object object = walking();
            Outputs outputs;
            const LiveObjects before = liveObjects();
            const bool isAnswered = attempt.isAnswered([&] { outputs = call(object); });
            if (!isAnswered) {
                EXPECT_TRUE(liveObjects() == before);
                outputs = call(object);
            }
            EXPECT_EQ(contentsOf(outputs), answer);
            EXPECT_TRUE(seen(object) == after);
            return isAnswered;
        });
        EXPECT_GT(failures, 0U);
    }

    /// What is not made leaves nothing; what is made is whole.
    void expectMakesAllOrNothing(const Make& make) {
        korvex::Object model = make();
        const Seen whole = seen(model);
        const std::size_t failures = refuseEachBlock([&](Attempt& attempt) {
            std::optional<korvex::Object> made;
            const LiveObjects before = liveObjects();
            const bool isAnswered = attempt.isAnswered([&] { made = make(); });
            if (!isAnswered) {
                EXPECT_TRUE(liveObjects() == before);
                made = make();
            }
            EXPECT_TRUE(seen(*made) == whole);
            return isAnswered;
        });
        EXPECT_GT(failures, 0U);
    }
};

TEST_F(FailingCalls, ofAddPathsAddAllOrNothing) {
    const korvex::Array folders = listsOf({{u"/", u"data"}, {u"/", u"logs", u"a"}});
    const korvex::Array files = listsOf({{u"t", u"x.t"}, {u"a"}});
    expectFailsWithoutChange(
        [&](korvex::Object& object) { return object.call("addPaths", 0, folders, files); });
}

TEST_F(FailingCalls, ofGetPathsChangeNothing) {
    const korvex::Array wanted = numbers({1, 3});
    const korvex::Array separator = text(u"/");
    expectFailsWithoutChange(
        [&](korvex::Object& object) { return object.call("getPaths", 1, wanted, separator); });
    expectFailsWithoutChange(
        [&](korvex::Object& object) { return object.call("getPaths", 2, wanted); });
}

TEST_F(FailingCalls, ofTheWalkStayWhereTheyWere) {
    expectFailsWithoutChange([](korvex::Object& object) { return object.call("getNextPath", 1); });
    expectFailsWithoutChange([](korvex::Object& object) { return object.call("hasNextPath", 1); });
    expectFailsWithoutChange([](korvex::Object& object) { return object.call("reset", 0); });
}

TEST_F(FailingCalls, ofSavingChangeNothing) {
    expectFailsWithoutChange([](korvex::Object& object) { return object.call("serialize", 2); });
    const std::vector<std::string> names{"StringTree", "PathTree"};
    expectFailsWithoutChange([&](korvex::Object& object) {
        const korvex::Array saved = object.save(names);
        return outputOf(korvex::Array(kxDuplicateArray(kxGetField(saved.get(), 0, "PathTree"))));
    });
}

TEST_F(FailingCalls, ofPropertiesChangeNothing) {
    for (const char* property : {"StringTree", "Frequencies"})
        expectFailsWithoutChange(
            [&](korvex::Object& object) { return outputOf(object.get(property)); });
    const korvex::Array characters = text(u"zyx");
    const korvex::Array frequencies = numbers({1, 2, 3});
    expectFailsWithoutChange([&](korvex::Object& object) {
        object.set("StringTree", characters);
        object.set("Frequencies", frequencies);
        return Outputs();
    });
}

TEST_F(FailingCalls, ofConstructorsMakeAllOrNothing) {
    const korvex::Array lists = listsOf({{u"/", u"data"}, {u"a.txt"}});
    const korvex::Array characters = text(u"abc");
    const korvex::Array frequencies = numbers({1, 2, 4});
    korvex::Object object = holding(smallListing());
    const korvex::Array original = object.toArray();
    const Outputs saved = object.call("serialize", 2);
    const korvex::Array files = text(u"files");
    const korvex::Array byFrequencies = text(u"frequencies");
    const korvex::Array copy = text(u"copy");
    const korvex::Array tree = text(u"tree");
    expectMakesAllOrNothing([&] { return construct(); });
    expectMakesAllOrNothing([&] { return construct(files, lists); });
    expectMakesAllOrNothing([&] { return construct(byFrequencies, characters, frequencies); });
    expectMakesAllOrNothing([&] { return construct(copy, original); });
    expectMakesAllOrNothing([&] { return construct(tree, saved[0], saved[1], frequencies); });
}

/// A load that fails says so on standard output and gives an object without what it could not read;
/// there may be no memory for that either.
TEST_F(FailingCalls, ofLoadGiveAnObjectThatIsWholeOrSayThatItIsNot) {
    const korvex::Array stored = holding(smallListing()).save({"StringTree", "PathTree"});
    const std::size_t failures = refuseEachBlock([&](Attempt& attempt) {
        std::optional<korvex::Object> loaded;
        const LiveObjects before = liveObjects();
        bool isAnswered = false;
        const std::string said = standardOutputOf([&] {
            isAnswered = attempt.isAnswered([&] { loaded = session.load(kClassName, stored); });
        });
        if (!isAnswered) {
            EXPECT_TRUE(liveObjects() == before);
            EXPECT_EQ(said, "");
            loaded = session.load(kClassName, stored);
        }
        if (said.empty())
            expectHolds(*loaded, smallPaths());
        else
            EXPECT_THROW(firstPaths(*loaded, smallPaths().size()), korvex::Error);
        return isAnswered && said.empty();
    });
    EXPECT_GT(failures, 0U);
}

TEST_F(FailingCalls, ofTheHostsOwnArraysMakeAllOrNothing) {
    const std::size_t failures = refuseEachBlock([&](Attempt& attempt) {
        korvex::Array made;
        const LiveObjects before = liveObjects();
        const bool isAnswered = attempt.isAnswered([&] { made = listsOf({{u"a", u"b"}, {u"c"}}); });
        if (!isAnswered) {
            EXPECT_TRUE(liveObjects() == before);
        } else {
            EXPECT_EQ(listsIn(made.get()), (Lists{{u"a", u"b"}, {u"c"}}));
        }
        return isAnswered;
    });
    EXPECT_GT(failures, 0U);
}

/// Loads the library for the first time in a child of this process, with a block refused, and once
/// more. Tells whether a block was refused.
bool isRefusedWhileLoading(std::size_t number, Refused way) {
    constexpr int kRefused = 1;
    const pid_t child = ::fork();
    if (child == 0) {
        Attempt attempt{number, way};
        korvex::Session session;
        const std::string library = ZQ_LIBRARY;
        const bool isLoaded = attempt.isAnswered([&] { session.loadLibrary(library); });
        if (!isLoaded) session.loadLibrary(library);
        korvex::Object object =
            session.construct(kClassName, text(u"frequencies"), text(u"ab"), numbers({1, 2}));
        object.call("addPaths", 0, listsOf({{u"a"}}), listsOf({{u"b"}}));
        ::_exit(attempt.hasRefused ? kRefused : 0);
    }
    int status = -1;
    ::waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) > kRefused) std::abort();
    return WEXITSTATUS(status) == kRefused;
}

TEST(FailingLoads, ofTheLibrarySucceedTheNextTime) {
    // The class is registered once in a process, so this needs one of its own.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::size_t count = 0;
            for (const Refused way : {Refused::kOne, Refused::kAllAfter}) {
                std::size_t number = 1;
                while (isRefusedWhileLoading(number, way)) ++number;
                count += number;
            }
            std::exit(count > 100 ? EXIT_SUCCESS : EXIT_FAILURE);
        },
        ::testing::ExitedWithCode(EXIT_SUCCESS), "");
}

}  // namespace
}  // namespace binding_tests
