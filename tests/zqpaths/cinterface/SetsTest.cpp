// The functions for C that read sets.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/support/SetFiles.hpp"
#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/cinterface/OpenedByC.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Numbers = std::vector<std::uint64_t>;

/// Six paths in three segments.
class CSets : public testing::Test {
protected:
    void expectFailure(zqp_status status, zqp_status expected, const std::string& text) const {
        EXPECT_EQ(status, expected);
        EXPECT_EQ(zqp_last_error(), text);
    }

    void expectNoPath(zqp_status status, const std::string& number) const {
        expectFailure(status, ZQP_WRONG_USE,
                      made_.file() + ": there is no path number " + number + ", the set has 6");
    }

    SegmentedSet made_ = sampleSet();
    OpenedByC opened_{made_.file()};
    const zqp_set* set_ = opened_.get();
};

TEST(CValues, neverChange) {
    EXPECT_THAT((std::vector<int>{ZQP_OK, ZQP_NOT_FOUND, ZQP_EXISTS, ZQP_NOT_A_SET, ZQP_DAMAGED,
                                  ZQP_HELD, ZQP_NO_SPACE, ZQP_SYSTEM, ZQP_WRONG_USE, ZQP_NO_MEMORY,
                                  ZQP_TOO_SMALL, ZQP_UNEXPECTED}),
                ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
    EXPECT_THAT((std::vector<int>{ZQP_TEXT, ZQP_GLOB, ZQP_REGEX, ZQP_IGNORE_CASE}),
                ElementsAre(0, 1, 2, 16));
    EXPECT_THAT((std::vector<int>{ZQP_CREATE, ZQP_REPLACE, ZQP_APPEND, ZQP_PACKED}),
                ElementsAre(0, 1, 2, 16));
    EXPECT_THAT((std::vector<int>{ZQP_GO_ON, ZQP_STOP}), ElementsAre(0, 1));
}

TEST(CVersion, isThatOfTheProject) {
    EXPECT_STREQ(zqp_version(), ZQ_PROJECT_VERSION);
}

// --- The set.

TEST_F(CSets, tellTheirSizeAndFile) {
    EXPECT_EQ(zqp_size(set_), 6U);
    EXPECT_EQ(zqp_file(set_), made_.file());
}

TEST_F(CSets, mayBeNoneWhereNothingCanFail) {
    EXPECT_EQ(zqp_size(nullptr), 0U);
    EXPECT_EQ(zqp_gone_count(nullptr), 0U);
    EXPECT_EQ(zqp_file(nullptr), nullptr);
    zqp_close(nullptr);
}

TEST_F(CSets, thatCannotBeOpenedAreNull) {
    const test_support::TemporaryTree tree;
    const std::string none = tree.pathOf("none.zqp");
    const std::string text = tree.addFile("text", std::string(10'000, 'x'));
    const std::string damaged = tree.addFile("damaged", contentOf(made_.file()).substr(0, 4096));
    auto* const something = reinterpret_cast<zqp_set*>(&made_);
    const auto open = [&](const std::string& file) {
        zqp_set* set = something;
        const zqp_status status = zqp_open(file.c_str(), &set);
        EXPECT_EQ(set, nullptr);
        return status;
    };
    expectFailure(open(none), ZQP_NOT_FOUND, none + ": No such file or directory");
    expectFailure(open(text), ZQP_NOT_A_SET, text + ": is no saved set");
    EXPECT_EQ(open(damaged), ZQP_DAMAGED);
    EXPECT_THAT(zqp_last_error(), HasSubstr(damaged + ": "));
    zqp_set* set = something;
    expectFailure(zqp_open(nullptr, &set), ZQP_WRONG_USE, "zqp_open: file is NULL");
    EXPECT_EQ(set, nullptr);
    expectFailure(zqp_open(none.c_str(), nullptr), ZQP_WRONG_USE, "zqp_open: set is NULL");
}

// --- Paths by their numbers.

TEST_F(CSets, tellWhichPathsAreGone) {
    int isGone = 7;
    EXPECT_EQ(zqp_gone_count(set_), 0U);
    expectStatus(zqp_is_gone(set_, 2, &isGone), ZQP_OK);
    EXPECT_EQ(isGone, 0);
    PathSetWriter writer(made_.file(), PathSetWriter::Mode::kAppend);
    writer.markGone(2);
    writer.markGone(6);
    writer.commit();
    const OpenedByC marked(made_.file());
    EXPECT_EQ(zqp_gone_count(marked.get()), 2U);
    for (const std::uint64_t number : {1U, 2U, 5U, 6U}) {
        expectStatus(zqp_is_gone(marked.get(), number, &isGone), ZQP_OK);
        EXPECT_EQ(isGone, number % 4 == 2 ? 1 : 0) << number;
    }
    EXPECT_EQ(zqp_is_gone(marked.get(), 7, &isGone), ZQP_WRONG_USE);
    expectFailure(zqp_is_gone(marked.get(), 1, nullptr), ZQP_WRONG_USE,
                  "zqp_is_gone: is_gone is NULL");
    expectFailure(zqp_is_gone(nullptr, 1, &isGone), ZQP_WRONG_USE, "zqp_is_gone: set is NULL");
}

TEST_F(CSets, giveAPathWhereItAndItsEndFit) {
    std::string buffer(6, '#');
    std::size_t length = 0;
    expectStatus(zqp_get(set_, 3, buffer.data(), 6, &length), ZQP_OK);
    EXPECT_EQ(buffer, std::string("plain\0", 6));
    EXPECT_EQ(length, 5U);
    buffer.assign(100, '#');
    expectStatus(zqp_get(set_, 4, buffer.data(), 100, &length), ZQP_OK);
    EXPECT_EQ(buffer.substr(0, length + 2), std::string("/usr/lib/caf\xC3\xA9\xFF\0#", 17));
}

TEST_F(CSets, tellHowLongAPathIsThatDoesNotFit) {
    std::string buffer(5, '#');
    std::size_t length = 0;
    expectFailure(zqp_get(set_, 3, buffer.data(), 5, &length), ZQP_TOO_SMALL,
                  "zqp_get: the buffer has room for 5 bytes, 6 are needed");
    EXPECT_EQ(length, 5U);
    EXPECT_EQ(buffer, "#####");
    expectFailure(zqp_get(set_, 6, nullptr, 0, &length), ZQP_TOO_SMALL,
                  "zqp_get: the buffer has room for 0 bytes, 6 are needed");
    EXPECT_EQ(length, 5U);
}

TEST_F(CSets, haveNoPathBeyondTheirSize) {
    char buffer[100];
    std::size_t length = 0;
    expectNoPath(zqp_get(set_, 0, buffer, sizeof buffer, &length), "0");
    expectNoPath(zqp_get(set_, 7, buffer, sizeof buffer, &length), "7");
    expectNoPath(zqp_get(set_, std::numeric_limits<std::uint64_t>::max(), buffer, 100, &length),
                 "18446744073709551615");
    const Numbers numbers{1, 7};
    std::vector<std::size_t> offsets(3);
    expectNoPath(zqp_get_many(set_, numbers.data(), 2, buffer, 100, offsets.data()), "7");
    expectNoPath(zqp_for_range(set_, 0, 1, refuseVisit, nullptr), "0");
    expectNoPath(zqp_for_range(set_, 1, 7, refuseVisit, nullptr), "7");
}

TEST_F(CSets, giveManyPathsWhereTheyFit) {
    const Numbers numbers{3, 6, 1, 3};
    const std::string expected = "plaina//b//usr/bin/aplain";
    std::string bytes(expected.size(), '#');
    std::vector<std::size_t> offsets(numbers.size() + 1, 99);
    expectStatus(zqp_get_many(set_, numbers.data(), numbers.size(), bytes.data(), bytes.size(),
                              offsets.data()),
                 ZQP_OK);
    EXPECT_EQ(bytes, expected);
    EXPECT_THAT(offsets, ElementsAre(0, 5, 10, 20, 25));
}

TEST_F(CSets, tellHowMuchRoomManyPathsNeed) {
    const Numbers numbers{3, 6, 1, 3};
    for (const std::size_t capacity : {0U, 1U, 7U, 24U}) {
        std::string bytes(capacity + 1, '#');
        std::vector<std::size_t> offsets(numbers.size() + 1, 99);
        expectFailure(zqp_get_many(set_, numbers.data(), numbers.size(), bytes.data(), capacity,
                                   offsets.data()),
                      ZQP_TOO_SMALL,
                      "zqp_get_many: the buffer has room for " + std::to_string(capacity) +
                          " bytes, 25 are needed");
        EXPECT_THAT(offsets, ElementsAre(0, 5, 10, 20, 25));
        EXPECT_EQ(bytes.back(), '#') << "is beyond the buffer";
    }
}

TEST_F(CSets, giveNoneOfNoNumbers) {
    std::size_t offset = 99;
    expectStatus(zqp_get_many(set_, nullptr, 0, nullptr, 0, &offset), ZQP_OK);
    EXPECT_EQ(offset, 0U);
}

TEST_F(CSets, findTheLowestNumberOfAPath) {
    std::uint64_t number = 99;
    expectStatus(zqp_number_of(set_, "/usr/bin/b", 10, &number), ZQP_OK);
    EXPECT_EQ(number, 2U);
    for (const std::string_view path : {"/usr/bin", "", "plain "}) {
        number = 99;
        expectStatus(zqp_number_of(set_, path.data(), path.size(), &number), ZQP_OK);
        EXPECT_EQ(number, 0U) << path;
    }
    expectStatus(zqp_number_of(set_, "plain is the beginning", 5, &number), ZQP_OK);
    EXPECT_EQ(number, 3U);
    expectStatus(zqp_number_of(set_, nullptr, 0, &number), ZQP_OK);
    EXPECT_EQ(number, 0U);
}

// --- Visits.

TEST_F(CSets, areVisitedUpAndDown) {
    using Visited = std::vector<Numbered>;
    EXPECT_EQ(
        visitedByC([&](auto visit, void* context) { return zqp_for_each(set_, visit, context); }),
        numberedWhere(made_.paths(), [](std::string_view) { return true; }));
    EXPECT_EQ(visitedByC([&](auto visit, void* context) {
                  return zqp_for_range(set_, 2, 3, visit, context);
              }),
              (Visited{{2, "/usr/bin/b"}, {3, "plain"}}));
    EXPECT_EQ(visitedByC([&](auto visit, void* context) {
                  return zqp_for_range(set_, 6, 5, visit, context);
              }),
              (Visited{{6, "a//b/"}, {5, "/usr/bin/b"}}));
}

TEST_F(CSets, areVisitedByFolder) {
    EXPECT_EQ(visitedByC([&](auto visit, void* context) {
                  return zqp_under(set_, "/usr/bin/ and more", 9, visit, context);
              }),
              (std::vector<Numbered>{{1, "/usr/bin/a"}, {2, "/usr/bin/b"}, {5, "/usr/bin/b"}}));
    EXPECT_EQ(visitedByC([&](auto visit, void* context) {
                  return zqp_under(set_, nullptr, 0, visit, context);
              }).size(),
              6U);
}

TEST_F(CSets, areSearchedByEachKindOfPattern) {
    const struct {
        std::string_view pattern;
        unsigned kind;
        Numbers expected;
    } rows[] = {
        {"in/b", ZQP_TEXT, {2, 5}},
        {"IN/B", ZQP_TEXT, {}},
        {"IN/B", ZQP_TEXT | ZQP_IGNORE_CASE, {2, 5}},
        {"[ab]", ZQP_GLOB, {1, 2, 5, 6}},
        {"P*n", ZQP_GLOB | ZQP_IGNORE_CASE, {3}},
        {"^pl|^a", ZQP_REGEX, {3, 6}},
        {"^PL|^A", ZQP_REGEX | ZQP_IGNORE_CASE, {3, 6}},
        {"", ZQP_TEXT, {1, 2, 3, 4, 5, 6}},
    };
    for (const auto& [pattern, kind, expected] : rows) {
        const auto visited = visitedByC([&, pattern = pattern, kind = kind](auto visit, void* to) {
            return zqp_find(set_, pattern.data(), pattern.size(), kind, visit, to);
        });
        Numbers numbers;
        for (const auto& [number, path] : visited) {
            EXPECT_EQ(path, made_.paths()[number - 1]);
            numbers.push_back(number);
        }
        EXPECT_EQ(numbers, expected) << pattern;
        std::uint64_t count = 99;
        expectStatus(zqp_count(set_, pattern.data(), pattern.size(), kind, &count), ZQP_OK);
        EXPECT_EQ(count, expected.size()) << pattern;
    }
}

TEST_F(CSets, refusePatternsThatCannotBeMeant) {
    std::uint64_t count = 0;
    EXPECT_EQ(zqp_find(set_, "(", 1, ZQP_REGEX, refuseVisit, nullptr), ZQP_WRONG_USE);
    EXPECT_THAT(zqp_last_error(), HasSubstr("missing )"));
    EXPECT_EQ(zqp_count(set_, "[a", 2, ZQP_REGEX, &count), ZQP_WRONG_USE);
    EXPECT_THAT(zqp_last_error(), HasSubstr("missing ]"));
    for (const unsigned kind : {3U, 4U, 32U, ZQP_REGEX + 32U, ~0U}) {
        const std::string text = "there is no pattern of kind " + std::to_string(kind);
        expectFailure(zqp_find(set_, "a", 1, kind, refuseVisit, nullptr), ZQP_WRONG_USE,
                      "zqp_find: " + text);
        expectFailure(zqp_count(set_, "a", 1, kind, &count), ZQP_WRONG_USE, "zqp_count: " + text);
    }
}

TEST_F(CSets, areWalkedFolderByFolder) {
    EXPECT_EQ(visitedByC([&](auto visit, void* context) { return zqp_walk(set_, visit, context); }),
              visitedBy([&](auto visit) { made_.open().walk(visit); }));
}

/// Each visit that there is, by its name.
template <class Check>
void forEachVisit(const zqp_set* set, Check check) {
    check("zqp_for_each", [=](auto visit, void* to) { return zqp_for_each(set, visit, to); });
    check("zqp_for_range",
          [=](auto visit, void* to) { return zqp_for_range(set, 6, 1, visit, to); });
    check("zqp_under", [=](auto visit, void* to) { return zqp_under(set, "/", 1, visit, to); });
    check("zqp_find",
          [=](auto visit, void* to) { return zqp_find(set, "a", 1, ZQP_TEXT, visit, to); });
    check("zqp_walk", [=](auto visit, void* to) { return zqp_walk(set, visit, to); });
}

TEST_F(CSets, endAVisitWhenTheCallbackSaysSo) {
    for (const int answer : {static_cast<int>(ZQP_STOP), 7, -1}) {
        struct Context {
            int answer;
            int count = 0;
        };
        forEachVisit(set_, [answer](const char* name, auto visitAll) {
            Context context{answer};
            const zqp_visitor stopAtSecond = [](void* to, std::uint64_t, const char*, std::size_t) {
                auto& visited = *static_cast<Context*>(to);
                return ++visited.count == 2 ? visited.answer : ZQP_GO_ON;
            };
            expectStatus(visitAll(stopAtSecond, &context), ZQP_OK);
            EXPECT_EQ(context.count, 2) << name;
        });
    }
}

TEST_F(CSets, letNothingOutThatACallbackThrows) {
    forEachVisit(set_, [](const char* name, auto visitAll) {
        const zqp_visitor fail = [](void*, std::uint64_t, const char*, std::size_t) -> int {
            throw std::out_of_range("mine");
        };
        EXPECT_EQ(visitAll(fail, nullptr), ZQP_UNEXPECTED) << name;
        EXPECT_STREQ(zqp_last_error(), "mine") << name;
    });
}

TEST_F(CSets, mayBeReadByTheCallbackOfAVisit) {
    const auto getAgain = [](void* context, std::uint64_t number, const char* path,
                             std::size_t length) -> int {
        char buffer[100];
        std::size_t lengthAgain = 0;
        const auto* set = static_cast<const zqp_set*>(context);
        expectStatus(zqp_get(set, number, buffer, sizeof buffer, &lengthAgain), ZQP_OK);
        EXPECT_EQ(std::string_view(buffer, lengthAgain), std::string_view(path, length));
        return ZQP_GO_ON;
    };
    expectStatus(zqp_find(set_, "b", 1, ZQP_TEXT, getAgain, const_cast<zqp_set*>(set_)), ZQP_OK);
}

TEST_F(CSets, refuseNull) {
    const auto expectNull = [this](const std::string& function, const char* argument,
                                   zqp_status status) {
        expectFailure(status, ZQP_WRONG_USE, function + ": " + argument + " is NULL");
    };
    forEachVisit(nullptr, [&](const char* name, auto visitAll) {
        expectNull(name, "set", visitAll(refuseVisit, nullptr));
    });
    forEachVisit(set_, [&](const char* name, auto visitAll) {
        expectNull(name, "visit", visitAll(nullptr, nullptr));
    });
    char byte = '#';
    std::size_t length = 0;
    std::uint64_t number = 1;
    expectNull("zqp_get", "set", zqp_get(nullptr, 1, &byte, 1, &length));
    expectNull("zqp_get", "buffer", zqp_get(set_, 1, nullptr, 1, &length));
    expectNull("zqp_get", "length", zqp_get(set_, 1, &byte, 1, nullptr));
    expectNull("zqp_get_many", "set", zqp_get_many(nullptr, &number, 1, &byte, 1, &length));
    expectNull("zqp_get_many", "numbers", zqp_get_many(set_, nullptr, 1, &byte, 1, &length));
    expectNull("zqp_get_many", "bytes", zqp_get_many(set_, &number, 1, nullptr, 1, &length));
    expectNull("zqp_get_many", "offsets", zqp_get_many(set_, &number, 1, &byte, 1, nullptr));
    expectNull("zqp_number_of", "set", zqp_number_of(nullptr, "a", 1, &number));
    expectNull("zqp_number_of", "path", zqp_number_of(set_, nullptr, 1, &number));
    expectNull("zqp_number_of", "number", zqp_number_of(set_, "a", 1, nullptr));
    expectNull("zqp_under", "folder", zqp_under(set_, nullptr, 1, refuseVisit, nullptr));
    expectNull("zqp_find", "pattern", zqp_find(set_, nullptr, 1, 0, refuseVisit, nullptr));
    expectNull("zqp_count", "set", zqp_count(nullptr, "a", 1, ZQP_TEXT, &number));
    expectNull("zqp_count", "pattern", zqp_count(set_, nullptr, 1, ZQP_TEXT, &number));
    expectNull("zqp_count", "count", zqp_count(set_, "a", 1, ZQP_TEXT, nullptr));
    expectNull("zqp_verify", "set", zqp_verify(nullptr, nullptr, nullptr));
    EXPECT_EQ(byte, '#');
}

TEST_F(CSets, areReadByManyThreadsWithErrorsOfTheirOwn) {
    std::vector<std::thread> threads;
    for (std::uint64_t beyond = 7; beyond < 11; ++beyond)
        threads.emplace_back([this, beyond] {
            char buffer[100];
            std::size_t length = 0;
            for (int i = 0; i < 200; ++i) {
                expectNoPath(zqp_get(set_, beyond, buffer, 100, &length), std::to_string(beyond));
                expectStatus(zqp_get(set_, 3, buffer, 100, &length), ZQP_OK);
                EXPECT_STREQ(buffer, "plain");
            }
        });
    for (std::thread& thread : threads) thread.join();
}

// --- Damage.

using Texts = std::vector<std::string>;

void keepText(void* context, const char* damage) {
    static_cast<Texts*>(context)->emplace_back(damage);
}

TEST_F(CSets, areVerifiedWhole) {
    Texts damages;
    expectStatus(zqp_verify(set_, keepText, &damages), ZQP_OK);
    EXPECT_THAT(damages, testing::IsEmpty());
    expectStatus(zqp_verify(set_, nullptr, nullptr), ZQP_OK);
}

TEST_F(CSets, reportEachDamage) {
    const auto segments = made_.open().segments();
    std::string content = contentOf(made_.file());
    for (const std::size_t segment : {1U, 2U})
        content[segments[segment].offset + segments[segment].size - 10] ^= 0x20;
    writeContent(made_.file(), content);
    const OpenedByC damaged(made_.file());
    Texts damages;
    EXPECT_EQ(zqp_verify(damaged.get(), keepText, &damages), ZQP_DAMAGED);
    Texts expected;
    for (const Error& damage : made_.open().verify()) expected.emplace_back(damage.what());
    ASSERT_GE(expected.size(), 2U);
    EXPECT_EQ(damages, expected);
    EXPECT_EQ(zqp_last_error(), expected.front());
    EXPECT_EQ(zqp_verify(damaged.get(), nullptr, nullptr), ZQP_DAMAGED);
    char buffer[100];
    std::size_t length = 0;
    EXPECT_EQ(zqp_get(damaged.get(), 3, buffer, sizeof buffer, &length), ZQP_DAMAGED);
    EXPECT_THAT(zqp_last_error(), HasSubstr(made_.file() + ": segment 2: "));
}

}  // namespace
}  // namespace zqpaths
