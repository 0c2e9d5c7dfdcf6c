// The work of a rank and the thread that talks for it; the other ranks are played.

#include "tools/zqpaths-mpi/communication/Member.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <exception>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zqpaths::program::mpi {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds kLong = 20s;

/// The thread that talks.
class Talker {
public:
    explicit Talker(Member& member) : member_(member) {}

    /// The next message that the work sends.
    Message next() {
        if (messages_.empty())
            for (Message& message : member_.outgoing(kLong))
                messages_.push_back(std::move(message));
        if (messages_.empty()) throw std::runtime_error("nothing is sent");
        Message message = std::move(messages_.front());
        messages_.pop_front();
        return message;
    }

private:
    Member& member_;
    std::deque<Message> messages_;
};

Message numbered(MessageKind kind, std::uint64_t number, const std::string& rest = "") {
    MessageWriter writer;
    writer.number(number);
    writer.raw(rest);
    return {0, kind, writer.take()};
}

TEST(Member, asksForPiecesUntilThereAreNone) {
    Member member(2, 4);
    Talker talker(member);
    auto work = std::async(std::launch::async, [&] {
        std::string seen;
        while (const auto piece = member.nextPiece())
            seen += std::to_string(piece->number) + piece->description + ' ';
        return seen + (member.nextPiece() ? "again" : "end");
    });
    EXPECT_EQ(talker.next().kind, MessageKind::kWant);
    member.deliver(numbered(MessageKind::kPiece, 7, "seven"));
    EXPECT_EQ(talker.next().kind, MessageKind::kWant);
    member.deliver({0, MessageKind::kNoPiece});
    EXPECT_EQ(work.get(), "7seven end");
}

TEST(Member, givesRecordsTogetherAndNoneCut) {
    Member member(1, 2);
    Talker talker(member);
    const std::string record(Member::kBytesAPart / 2 + 1, 'r');
    auto work = std::async(std::launch::async, [&] {
        for (int i = 0; i < 3; ++i) member.give(9, record);
        member.finish(9);
    });
    std::vector<std::size_t> sizes;
    bool isLast = false;
    while (!isLast) {
        const Message message = talker.next();
        EXPECT_EQ(message.kind, MessageKind::kResult);
        MessageReader reader(message.bytes);
        EXPECT_EQ(reader.number(), 9U);
        isLast = reader.number() != 0;
        sizes.push_back(reader.rest().size());
    }
    work.get();
    EXPECT_EQ(sizes, (std::vector<std::size_t>{2 * record.size(), record.size()}));
}

TEST(Member, waitsWhileTooMuchIsUntaken) {
    Member member(0, 1);
    Talker talker(member);
    const std::string part(Member::kBytesAPart, 'p');
    auto work = std::async(std::launch::async, [&] {
        for (int i = 0; i < 5; ++i) member.give(0, part);
        member.finish(0);
    });
    std::size_t untaken = 0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(talker.next().kind, MessageKind::kResult);
        untaken += costOf(part.size());
    }
    EXPECT_LE(untaken, Member::kMostUntaken);
    EXPECT_EQ(work.wait_for(50ms), std::future_status::timeout);
    EXPECT_TRUE(member.outgoing(0us).empty());
    for (int i = 0; i < 3; ++i) {
        member.deliver(numbered(MessageKind::kTaken, costOf(part.size())));
        talker.next();
    }
    work.get();
}

TEST(Member, sendsARecordThatIsLongerThanAllThatMayBeUntaken) {
    Member member(0, 1);
    Talker talker(member);
    auto work = std::async(std::launch::async,
                           [&] { member.give(0, std::string(2 * Member::kMostUntaken, 'l')); });
    EXPECT_GT(talker.next().bytes.size(), Member::kMostUntaken);
    work.get();
}

TEST(Member, exchangesWithAllAndWithItself) {
    Member member(1, 3);
    Talker talker(member);
    auto work = std::async(std::launch::async, [&] { return member.exchange({"a", "b", "c"}); });
    const Message first = talker.next();
    const Message second = talker.next();
    EXPECT_EQ(first.rank, 0);
    EXPECT_EQ(first.bytes, "a");
    EXPECT_EQ(second.rank, 2);
    EXPECT_EQ(second.bytes, "c");
    member.deliver({2, MessageKind::kParcel, "from 2"});
    member.deliver({0, MessageKind::kParcel, "from 0"});
    EXPECT_EQ(work.get(), (std::vector<std::string>{"from 0", "b", "from 2"}));
}

TEST(Member, keepsParcelsThatComeBeforeTheirRun) {
    Member member(0, 2);
    member.deliver({1, MessageKind::kParcel, "one"});
    member.beginRun();
    member.deliver({1, MessageKind::kParcel, "two"});
    EXPECT_EQ(member.receive(1), "one");
    EXPECT_EQ(member.receive(1), "two");
}

TEST(Member, stopsWhateverItWaitsFor) {
    const auto expectStopped = [](auto wait) {
        Member member(0, 2);
        auto work = std::async(std::launch::async, [&] { wait(member); });
        EXPECT_EQ(work.wait_for(5ms), std::future_status::timeout);
        member.stop();
        EXPECT_THROW(work.get(), Stopped);
        EXPECT_TRUE(member.isStopped());
        EXPECT_THROW(member.throwIfStopped(), Stopped);
    };
    expectStopped([](Member& member) { member.nextPiece(); });
    expectStopped([](Member& member) { member.receive(1); });
    expectStopped([](Member& member) {
        for (std::uint64_t piece = 0;; ++piece) member.finish(piece);
    });
}

TEST(Member, countsWhatIsDoneBetweenTwoQuestions) {
    Member member(0, 1);
    member.advance(5);
    member.advance(7, 2);
    EXPECT_EQ(member.takeCounts(), (Member::Counts{5, 0, 7, 0}));
    member.advance(1, 2);
    EXPECT_EQ(member.takeCounts(), (Member::Counts{0, 0, 1, 0}));
}

TEST(Member, keepsWhatItsWorkHasThrown) {
    Member member(0, 1);
    EXPECT_FALSE(member.hasEnded());
    std::thread([&] { member.endWork(std::make_exception_ptr(Stopped())); }).join();
    EXPECT_TRUE(member.hasEnded());
    EXPECT_THROW(std::rethrow_exception(member.error()), Stopped);
    member.beginRun();
    EXPECT_FALSE(member.hasEnded());
    EXPECT_EQ(member.error(), nullptr);
}

}  // namespace
}  // namespace zqpaths::program::mpi
