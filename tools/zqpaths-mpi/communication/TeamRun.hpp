#pragma once
// TeamRun carries the messages of one run of work, on the thread that talks: what the work of this
// rank sends, what comes for it, and on rank 0 the pieces, results and counts of all.
//
// Threads: it belongs to the main thread, and ends the thread of the work before it is gone.

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <thread>

#include "tools/zqpaths-mpi/communication/ResultOrder.hpp"
#include "tools/zqpaths-mpi/communication/Team.hpp"

namespace zqpaths::program::mpi {

class TeamRun {
public:
    TeamRun(Team& team, const TeamWork& work);
    TeamRun(const TeamRun&) = delete;
    TeamRun& operator=(const TeamRun&) = delete;
    ~TeamRun();

    /// Returns when the run is over on all ranks. Throws as Team::run.
    void carry();

private:
    using Clock = std::chrono::steady_clock;

    bool carryIn();
    bool carryOut(std::chrono::microseconds wait);
    void handle(Message message);

    void sendCounts();
    void endOwnWork();

    // --- Rank 0 alone.

    void deal(int rank);
    void addResult(const Message& message);
    bool takeNextResult();
    void addCounts(const Message& message);
    bool areAllDone() const noexcept;

    Team& team_;
    Mailbox& mailbox_;
    Member& member_;
    const TeamWork& work_;
    ResultOrder results_;
    std::uint64_t dealtCount_ = 0;
    std::size_t doneCount_ = 0;  // ranks whose work is done
    bool isOwnWorkDone_ = false;
    bool isOver_ = false;
    Clock::time_point countsSent_ = Clock::now();
    std::thread thread_;
};

}  // namespace zqpaths::program::mpi
