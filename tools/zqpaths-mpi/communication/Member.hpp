#pragma once
// Member is what the work of a rank has of the others: pieces that it is dealt, results that it
// gives to rank 0, parcels from rank to rank. The work runs on a thread of its own and waits where
// it has to; the thread that talks carries what goes in and out.
//
//     while (const std::optional<Piece> piece = member.nextPiece()) {
//         for (...) member.give(piece->number, record);
//         member.finish(piece->number);
//     }
//
// When the job is stopped, since a rank has failed, every call that may wait throws Stopped. Work
// that goes on for long without such a call looks after isStopped itself.
//
// Results are bounded: a rank has at most kMostUntaken bytes on their way that rank 0 has not
// taken, and waits in give and finish for room. The rank whose piece is the next in order always
// gets room, for all that it gave before has been taken; so nobody waits for ever, as long as a
// rank gives its pieces in ascending order.
//
// Threads: the two halves below are for two threads.

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths-mpi/communication/Message.hpp"
#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths-mpi/communication/ResultOrder.hpp"
#include "tools/zqpaths/progress/WorkPhases.hpp"

namespace zqpaths::program::mpi {

/// A part of the work that one rank does.
struct Piece {
    std::uint64_t number;     // from 0 on
    std::string description;  // what rank 0 says of it
};

/// The job ends without the rest of the work. Whoever failed is told by rank 0.
class Stopped {};

class Member {
public:
    static constexpr std::size_t kBytesAPart = std::size_t{1} << 19;
    static constexpr std::size_t kMostUntaken = 4 * kBytesAPart;

    Member(int rank, int size);
    Member(const Member&) = delete;
    Member& operator=(const Member&) = delete;
    ~Member() = default;

    int rank() const noexcept { return rank_; }
    int size() const noexcept { return size_; }

    // --- For the work.

    /// The next piece, when rank 0 has dealt it; nothing if there are no more.
    std::optional<Piece> nextPiece();

    /// Adds a record to the result of a piece. Rank 0 gets records together, but none cut.
    void give(std::uint64_t piece, std::string_view record);

    /// The result of the piece is whole; what was not given is empty. Each piece is finished once,
    /// by the rank that has it.
    void finish(std::uint64_t piece);

    /// Sends a parcel to a rank, which may be this one. Does not wait: what is sent and not
    /// received is for the work to bound.
    void send(int to, std::string parcel);

    /// The next parcel of a rank, when it is there.
    std::string receive(int from);

    /// All to all: parcel i goes to rank i; what comes back was sent by rank i. All ranks call it.
    std::vector<std::string> exchange(std::vector<std::string> parcels);

    /// So many items of a phase more are done; from any thread. O(1).
    void advance(std::uint64_t items, std::size_t phase = 0) noexcept {
        counts_[phase].fetch_add(items, std::memory_order_relaxed);
    }

    /// Has rank 0 tell a message.
    void tell(std::string_view message);

    bool isStopped() const noexcept { return isStopped_; }
    void throwIfStopped() const {
        if (isStopped()) throw Stopped();
    }

    // --- For the thread that talks.

    using Counts = std::array<std::uint64_t, WorkPhases::kMostPhases>;

    /// Begins a run of work. Parcels that came before stay.
    void beginRun();

    /// What is to be sent, in its order; waits for some at most so long.
    std::vector<Message> outgoing(std::chrono::microseconds wait);

    /// Takes what came for the work: kPiece, kNoPiece, kTaken, kParcel.
    void deliver(Message message);

    /// The counts since they were asked for last.
    Counts takeCounts() noexcept;

    /// The work has ended, by what it has thrown or with nothing; to be called by its thread.
    void endWork(std::exception_ptr error) noexcept;
    bool hasEnded() const;
    std::exception_ptr error() const;

    void stop() noexcept;

private:
    void post(Message message);
    void postResult(std::uint64_t piece, bool isLast);
    void wait(std::unique_lock<std::mutex>& lock, const auto& isReady);

    const int rank_;
    const int size_;
    std::atomic<bool> isStopped_{false};
    std::array<std::atomic<std::uint64_t>, WorkPhases::kMostPhases> counts_{};
    std::string given_;  // records that were not sent; of the work alone

    mutable std::mutex mutex_;  // of all below
    std::condition_variable arrived_;
    std::condition_variable leaves_;
    std::vector<Message> outgoing_;
    std::vector<std::deque<std::string>> parcels_;  // by rank
    std::optional<Piece> dealt_;
    bool areAllDealt_ = false;
    std::size_t untaken_ = 0;  // what results cost that were not taken yet
    bool hasEnded_ = false;
    bool hasJustEnded_ = false;  // and nobody has been woken for it
    std::exception_ptr error_;
};

/// What a part of a result costs while it is on its way, at both of its ends.
std::size_t costOf(std::size_t bytes) noexcept;

}  // namespace zqpaths::program::mpi
