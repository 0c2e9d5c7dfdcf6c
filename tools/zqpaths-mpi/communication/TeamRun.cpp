#include "tools/zqpaths-mpi/communication/TeamRun.hpp"

#include <algorithm>
#include <exception>
#include <utility>
#include <vector>

#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths-mpi/communication/Patience.hpp"
#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/output/Messages.hpp"

namespace zqpaths::program::mpi {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds kBetweenCounts = 100ms;

// Messages that are handled before this rank looks at its own: a bound, so that many ranks do not
// keep rank 0 from taking what they give.
constexpr unsigned kMostAtOnce = 64;

/// What the work of this rank has thrown, as all are told of it.
Failure failureOfWork(const std::exception_ptr& error, const Team& team) {
    Failure failure = failureOf(error);
    if (!team.isFirst() || team.size() == 1) return failure;  // rank 0 adds the others' ranks
    return {failure.status(), std::string("rank 0: ") + failure.what()};
}

}  // namespace

TeamRun::TeamRun(Team& team, const TeamWork& work)
    : team_(team), mailbox_(team.mailbox_), member_(team.member_), work_(work) {
    member_.beginRun();
    thread_ = std::thread([this] {
        std::exception_ptr error;
        try {
            work_.work(member_);
        } catch (...) {
            error = std::current_exception();
        }
        member_.endWork(error);
    });
}

TeamRun::~TeamRun() {
    if (!isOver_) member_.stop();
    thread_.join();
}

void TeamRun::carry() {
    Patience patience;
    while (!isOver_) {
        DeferredSignals::throwIfOneCame();
        bool isBusy = carryIn();
        isBusy = takeNextResult() || isBusy;
        isBusy = carryOut(isBusy ? 0us : patience.next(mailbox_.isMoving())) || isBusy;
        if (isBusy) patience.renew();
        if (team_.isFirst() && areAllDone()) {
            team_.sendToOthers(MessageKind::kRunOver);
            isOver_ = true;
        }
    }
}

bool TeamRun::carryIn() {
    unsigned count = 0;
    for (; count < kMostAtOnce && !isOver_; ++count) {
        std::optional<Message> message = mailbox_.receive();
        if (!message) break;
        handle(std::move(*message));
    }
    return count > 0;
}

/// The end of the work is seen before its last messages are, so that it is told after them.
bool TeamRun::carryOut(std::chrono::microseconds wait) {
    const bool hasEnded = member_.hasEnded();
    std::vector<Message> messages = member_.outgoing(wait);
    for (Message& message : messages) mailbox_.send(std::move(message));
    if (hasEnded && !isOwnWorkDone_) endOwnWork();
    if (Clock::now() - countsSent_ >= kBetweenCounts) sendCounts();
    return !messages.empty();
}

void TeamRun::endOwnWork() {
    if (member_.error()) throw failureOfWork(member_.error(), team_);
    isOwnWorkDone_ = true;
    sendCounts();
    mailbox_.send({0, MessageKind::kWorkDone});
}

void TeamRun::sendCounts() {
    countsSent_ = Clock::now();
    const Member::Counts counts = member_.takeCounts();
    if (std::ranges::all_of(counts, [](std::uint64_t count) { return count == 0; })) return;
    MessageWriter writer;
    for (const std::uint64_t count : counts) writer.number(count);
    mailbox_.send({0, MessageKind::kCounts, writer.take()});
}

void TeamRun::handle(Message message) {
    switch (message.kind) {
        case MessageKind::kWant:
            return deal(message.rank);
        case MessageKind::kResult:
            return addResult(message);
        case MessageKind::kCounts:
            return addCounts(message);
        case MessageKind::kWords:
            return tell(message.bytes);
        case MessageKind::kWorkDone:
            ++doneCount_;
            return;
        case MessageKind::kRunOver:
            isOver_ = true;
            return;
        case MessageKind::kStop:
            throw Stopped();
        case MessageKind::kEnded:
            team_.noteEnd(message);
            if (team_.failure_) throw Failure(*team_.failure_);
            return;
        default:
            return member_.deliver(std::move(message));
    }
}

void TeamRun::deal(int rank) {
    std::optional<std::string> description;
    if (work_.nextPiece) description = work_.nextPiece();
    if (!description) {
        mailbox_.send({rank, MessageKind::kNoPiece});
        return;
    }
    MessageWriter writer;
    writer.number(dealtCount_++);
    writer.raw(*description);
    mailbox_.send({rank, MessageKind::kPiece, writer.take()});
}

void TeamRun::addResult(const Message& message) {
    MessageReader reader(message.bytes);
    const std::uint64_t piece = reader.number();
    const bool isLast = reader.number() != 0;
    results_.add({piece, message.rank, std::string(reader.rest()), isLast});
}

bool TeamRun::takeNextResult() {
    const std::optional<ResultPart> part = results_.next();
    if (!part) return false;
    if (work_.take) work_.take(*part);
    MessageWriter writer;
    writer.number(costOf(part->bytes.size()));
    mailbox_.send({part->rank, MessageKind::kTaken, writer.take()});
    return true;
}

void TeamRun::addCounts(const Message& message) {
    MessageReader reader(message.bytes);
    for (std::size_t phase = 0; !reader.isAtEnd(); ++phase) {
        const std::uint64_t count = reader.number();
        if (work_.advance && count > 0) work_.advance(phase, count);
    }
}

bool TeamRun::areAllDone() const noexcept {
    return doneCount_ == static_cast<std::size_t>(team_.size()) && results_.isEmpty();
}

}  // namespace zqpaths::program::mpi
