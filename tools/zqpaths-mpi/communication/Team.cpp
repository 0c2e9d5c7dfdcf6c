#include "tools/zqpaths-mpi/communication/Team.hpp"

#include <memory>
#include <thread>
#include <utility>

#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths-mpi/communication/Patience.hpp"
#include "tools/zqpaths-mpi/communication/TeamRun.hpp"

namespace zqpaths::program::mpi {
namespace {

std::string bytesOf(const std::optional<Failure>& failure) {
    MessageWriter writer;
    if (!failure) return writer.take();
    writer.number(static_cast<std::uint64_t>(failure->status()));
    writer.text(failure->what());
    return writer.take();
}

}  // namespace

Team::Team() : member_(mailbox_.rank(), mailbox_.size()) {}

void Team::run(const TeamWork& work) {
    TeamRun(*this, work).carry();
}

void Team::noteEnd(const Message& message) {
    ++endedCount_;
    MessageReader reader(message.bytes);
    if (reader.isAtEnd() || failure_) return;
    const auto status = static_cast<ExitStatus>(reader.number());
    failure_ =
        Failure(status, "rank " + std::to_string(message.rank) + ": " + std::string(reader.text()));
}

void Team::sendToOthers(MessageKind kind) {
    for (int other = 0; other < size(); ++other)
        if (other != rank()) mailbox_.send({other, kind});
}

void Team::stopOthers() {
    if (!std::exchange(isStopped_, true)) sendToOthers(MessageKind::kStop);
}

std::optional<Failure> Team::finish(const std::optional<Failure>& failure) {
    if (isFirst()) {
        ++endedCount_;
        if (failure) stopOthers();
        // One that fails last of all stops those that wait for it.
        receiveUntil([this] {
            if (failure_) stopOthers();
            return endedCount_ == static_cast<std::size_t>(size());
        });
        sendToOthers(MessageKind::kBye);
    } else {
        // Those that this rank has sent to have what it sent before rank 0 knows that it has ended.
        receiveUntil([this] { return mailbox_.hasSentAll(); });
        mailbox_.send({0, MessageKind::kEnded, bytesOf(failure)});
        receiveUntil([this] { return isBye_; });
    }
    receiveUntil([this] { return mailbox_.hasSentAll(); });
    if (failure) return std::nullopt;
    return failure_;
}

void Team::receiveUntil(const std::function<bool()>& isOver) {
    Patience patience;
    while (!isOver()) {
        const std::optional<Message> message = mailbox_.receive();
        if (!message) {
            std::this_thread::sleep_for(patience.next(mailbox_.isMoving()));
            continue;
        }
        patience.renew();
        if (message->kind == MessageKind::kEnded) noteEnd(*message);
        if (message->kind == MessageKind::kBye) isBye_ = true;
    }
}

std::uint64_t numberOfFirst(Team& team, std::uint64_t number) {
    if (team.size() == 1) return number;
    team.run({.work = [&number](Member& member) {
        if (member.rank() != 0) {
            number = MessageReader(member.receive(0)).number();
            return;
        }
        MessageWriter writer;
        writer.number(number);
        for (int other = 1; other < member.size(); ++other)
            member.send(other, std::string(writer.bytes()));
    }});
    return number;
}

std::function<std::optional<std::string>()> numberedPieces(std::uint64_t count) {
    return [left = count]() mutable -> std::optional<std::string> {
        if (left == 0) return std::nullopt;
        --left;
        return std::string();
    };
}

void forEachPiece(Member& member, const std::function<void(const Piece& piece)>& work) {
    while (const std::optional<Piece> piece = member.nextPiece()) {
        work(*piece);
        member.finish(piece->number);
    }
}

}  // namespace zqpaths::program::mpi
