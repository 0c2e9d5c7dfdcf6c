#pragma once
// Team is the ranks of a job, as the thread of a rank that talks to the others sees them. All ranks
// do the same: they open the sets, and go through the same runs of work.
//
//     Team team;                    // in main, within an MpiSession
//     team.run({.work = [&](Member& member) { forEachPiece(member, [&](const Piece& piece) { ...
//     }); },
//               .nextPiece = numberedPieces(100),
//               .take = [&](const ResultPart& part) { output.text(part.bytes); },
//               .advance = [&](std::size_t phase, std::uint64_t items) { ... }});
//     ...
//     std::optional<Failure> failure = team.finish(ownFailure);
//
// A run starts a thread on each rank, which does the work, also on rank 0; so one rank is a whole
// program and each further rank takes its part. Meanwhile this thread carries messages. It looks
// for them and sleeps in between, up to a millisecond: there may be more ranks than processors, and
// MPI itself would wait in a loop.
//
// Threads: all is called on the main thread, and so is all that TeamWork names but `work`.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/zqpaths-mpi/communication/Mailbox.hpp"
#include "tools/zqpaths-mpi/communication/Member.hpp"
#include "tools/zqpaths-mpi/communication/Message.hpp"
#include "tools/zqpaths-mpi/communication/ResultOrder.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program::mpi {

/// What a run does. Rank 0 alone calls the functions below `work`; each may be empty.
struct TeamWork {
    std::function<void(Member& member)> work;

    /// What describes the next piece, for the rank that gets it; nothing if there are no more. It
    /// is called when a rank is free, so that pieces need not be known before.
    std::function<std::optional<std::string>()> nextPiece{};

    /// Results, in the order of the pieces and as they come: the parts of a piece, the last of
    /// which says so and may be empty. What is slow here lets the ranks wait.
    std::function<void(const ResultPart& part)> take{};

    /// So many items of a phase more were done, by any rank.
    std::function<void(std::size_t phase, std::uint64_t items)> advance{};
};

class Team {
public:
    Team();

    int rank() const noexcept { return mailbox_.rank(); }
    int size() const noexcept { return mailbox_.size(); }
    bool isFirst() const noexcept { return rank() == 0; }

    /// Does the work on all ranks; returns when all have done it and rank 0 has taken all results.
    /// Throws what the work of this rank throws; on rank 0 Failure for what another rank or the
    /// work of rank 0 has thrown, with the rank; on the others Stopped when the job is stopped. A
    /// signal that DeferredSignals holds back is such a failure, too.
    void run(const TeamWork& work);

    /// To be called once, when this rank has done all or has failed. Stops the others if it has.
    /// Returns when all ranks have come here: on rank 0 with the first failure of another rank
    /// unless a failure is given. The name of a rank is in it.
    std::optional<Failure> finish(const std::optional<Failure>& failure);

private:
    friend class TeamRun;

    /// Throws Failure for the end of another rank that has failed, as rank 0 tells it.
    void noteEnd(const Message& message);
    void stopOthers();
    void sendToOthers(MessageKind kind);

    /// Receives all that comes until `isOver`, and heeds only how ranks end.
    void receiveUntil(const std::function<bool()>& isOver);

    Mailbox mailbox_;
    Member member_;
    std::size_t endedCount_ = 0;  // of all ranks, on rank 0
    bool isStopped_ = false;
    bool isBye_ = false;
    std::optional<Failure> failure_;  // the first of another rank, on rank 0
};

/// The number that rank 0 has, on all ranks, which all call it.
std::uint64_t numberOfFirst(Team& team, std::uint64_t number);

/// Descriptions of so many pieces, which their numbers alone describe.
std::function<std::optional<std::string>()> numberedPieces(std::uint64_t count);

/// Does the pieces that the rank is dealt; what is done may give results and leaves finishing the
/// piece to this.
void forEachPiece(Member& member, const std::function<void(const Piece& piece)>& work);

}  // namespace zqpaths::program::mpi
