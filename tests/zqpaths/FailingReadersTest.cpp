// Lack of memory at every step of whatever is asked of an opened set: std::bad_alloc, never a
// damage that is none, and the answer as soon as there is memory again.

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <functional>
#include <new>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/FailingHeap.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/SegmentedSets.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/Pattern.hpp"
#include "zqpaths/choosing/PathParts.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"

namespace zqpaths {
namespace {

using Refused = FailingHeap::Refused;

constexpr std::array<std::uint64_t, 3> kNumbers{4, 1, 6};

// Made beforehand: RE2, which compiles them, does not survive a lack of memory.
const Pattern kText = Pattern::text("b");
const Pattern kTextWithoutCase = Pattern::text("BIN", Pattern::Case::kIgnore);
const Pattern kGlob = Pattern::glob("/usr/**/b");

/// What was visited, as one text, in memory that was there before.
class Visits {
public:
    Visits() { text_.reserve(std::size_t{1} << 16); }

    auto visitor() {
        return [this](std::uint64_t number, std::string_view path) { add(number, path); };
    }
    void add(std::uint64_t number, std::string_view text = {}) {
        text_.append(1, static_cast<char>('0' + number)).append(text).append(1, ' ');
    }
    const std::string& text() const noexcept { return text_; }

private:
    std::string text_;
};

/// A question to a set; it adds what it learns to the visits.
struct Question {
    const char* name;
    std::function<void(const PathSet&, Visits&)> ask;
};

const std::vector<Question> kQuestions{
    {"path", [](const PathSet& set, Visits& visits) { visits.add(3, set.path(3)); }},
    {"paths", [](const PathSet& set, Visits& visits) { set.paths(kNumbers, visits.visitor()); }},
    {"forEach", [](const PathSet& set, Visits& visits) { set.forEach(visits.visitor()); }},
    {"forEach downwards",
     [](const PathSet& set, Visits& visits) { set.forEach(5, 2, visits.visitor()); }},
    {"iterator",
     [](const PathSet& set, Visits& visits) {
         for (auto path = set.begin(); path != set.end(); ++path) visits.add(path.number(), *path);
     }},
    {"gone",
     [](const PathSet& set, Visits& visits) {
         visits.add(set.goneNumber(0));
         visits.add(set.presentNumber(2));
         visits.add(set.goneCount(1, 4));
         visits.add(set.isGone(2) ? 1 : 0);
     }},
    {"numberOf",
     [](const PathSet& set, Visits& visits) {
         visits.add(set.numberOf("/usr/bin/b").value_or(0));
         visits.add(set.numberOf("none").value_or(0));
     }},
    {"under", [](const PathSet& set, Visits& visits) { set.under("/usr", visits.visitor()); }},
    {"find a text", [](const PathSet& set, Visits& visits) { set.find(kText, visits.visitor()); }},
    {"find without case",
     [](const PathSet& set, Visits& visits) { set.find(kTextWithoutCase, visits.visitor()); }},
    {"find a glob", [](const PathSet& set, Visits& visits) { set.find(kGlob, visits.visitor()); }},
    {"count", [](const PathSet& set, Visits& visits) { visits.add(set.count(kText)); }},
    {"findNumbers",
     [](const PathSet& set, Visits& visits) {
         set.findNumbers(kText, [&](std::uint64_t first, std::uint64_t last) {
             visits.add(first);
             visits.add(last);
             return true;
         });
     }},
    {"walk", [](const PathSet& set, Visits& visits) { set.walk(visits.visitor()); }},
    {"verify", [](const PathSet& set, Visits& visits) { visits.add(set.verify().size()); }},
    {"segments", [](const PathSet& set, Visits& visits) {
         for (const PathSet::Segment& segment : set.segments()) visits.add(segment.pathCount);
         visits.add(set.fileCount(), set.fileName(0).substr(0, 1));
     }}};

/// Asks a set that is opened anew each time, with one block after the other refused, until none is.
/// Returns how often there was no memory.
std::size_t failEverywhere(const std::string& file, const Question& question, Refused way) {
    constexpr std::size_t kMostBlocks = 10'000;  // a question that asks for more does not end
    Visits expected;
    question.ask(PathSet::open(file), expected);
    std::size_t failures = 0;
    bool hasRefused = true;
    for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
        SCOPED_TRACE(number);
        const PathSet set = PathSet::open(file);
        Visits visits;
        bool isAnswered = false;
        {
            const FailingHeap heap(number, way);
            try {
                question.ask(set, visits);
                isAnswered = true;
            } catch (const std::bad_alloc&) {
                ++failures;
            }
            hasRefused = heap.hasRefused();
        }
        if (isAnswered) {
            EXPECT_EQ(visits.text(), expected.text());
        }
        Visits again;
        question.ask(set, again);
        EXPECT_EQ(again.text(), expected.text());
        if (testing::Test::HasFailure()) break;
    }
    EXPECT_FALSE(hasRefused);
    return failures;
}

void askEverything(const std::string& file) {
    for (const Question& question : kQuestions) {
        SCOPED_TRACE(question.name);
        for (const Refused way : {Refused::kOne, Refused::kAllAfter})
            failEverywhere(file, question, way);
        if (testing::Test::HasFailure()) return;
    }
    EXPECT_GT(failEverywhere(file, kQuestions[2], Refused::kOne), 0U);
}

/// A set of images and packed segments, with a path that is gone.
class FailingReaders : public testing::Test {
protected:
    FailingReaders() {
        PathSetWriter writer(made_.file(), PathSetWriter::Mode::kAppend);
        writer.markGone(2);
        writer.commit();
    }

    SegmentedSet made_ = sampleSet();
};

TEST_F(FailingReaders, ofAFileThrowBadAllocOrAnswer) {
    askEverything(made_.file());
}

TEST_F(FailingReaders, ofASetOfSetsThrowBadAllocOrAnswer) {
    const test_support::TemporaryTree tree;
    SetManifestWriter writer(tree.pathOf("all.zqs"));
    for (const std::uint64_t first : {0U, 1U}) writer.addSegments(made_.file(), first, 1 + first);
    writer.commit();
    askEverything(tree.pathOf("all.zqs"));
}

TEST_F(FailingReaders, openASetOrThrowBadAlloc) {
    for (const auto& open : {PathSet::open, PathSet::openPartial}) {
        std::size_t failures = 0;
        bool hasRefused = true;
        for (std::size_t number = 1; hasRefused; ++number) {
            std::optional<PathSet> set;
            {
                const FailingHeap heap(number, Refused::kOne);
                try {
                    set = open(made_.file());
                } catch (const std::bad_alloc&) {
                    ++failures;
                }
                hasRefused = heap.hasRefused();
            }
            if (set) {
                EXPECT_EQ(set->path(3), "plain");
            }
        }
        EXPECT_GT(failures, 3U);
    }
}

TEST(FailingParts, areMadeOrThrowBadAlloc) {
    constexpr std::array kFractions{0.5, 0.25, 0.25};
    bool hasRefused = true;
    for (std::size_t number = 1; hasRefused; ++number) {
        const FailingHeap heap(number, Refused::kOne);
        try {
            EXPECT_EQ(PathParts(kFractions, 1).count(), 3U);
        } catch (const std::bad_alloc&) {
        }
        hasRefused = heap.hasRefused();
    }
}

}  // namespace
}  // namespace zqpaths
