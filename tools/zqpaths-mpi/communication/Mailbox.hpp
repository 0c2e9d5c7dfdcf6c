#pragma once
// Mailbox sends messages between the ranks of a job and receives them, by MPI, which no other
// source knows. Nothing in it waits, since those that wait in MPI keep a processor busy.
//
//     MpiSession session;
//     Mailbox mailbox;
//     mailbox.send({.rank = 0, .kind = MessageKind::kWant});
//     while (std::optional<Message> message = mailbox.receive()) handle(*message);
//
// Messages between two ranks keep their order. A long one travels in parts, so that no length is
// beyond what MPI counts with. A rank may send to itself.
//
// Threads: all is called on the thread that made the session, the main thread of the process.

#include <cstddef>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/zqpaths-mpi/communication/Message.hpp"

namespace zqpaths::program::mpi {

/// MPI from beginning to end; one in a process. All ranks end together: the destructor waits.
class MpiSession {
public:
    MpiSession();
    MpiSession(const MpiSession&) = delete;
    MpiSession& operator=(const MpiSession&) = delete;
    ~MpiSession();
};

class Mailbox {
public:
    /// Lives within a session.
    Mailbox();
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;
    ~Mailbox();

    int rank() const noexcept { return rank_; }
    int size() const noexcept { return size_; }

    void send(Message message);

    /// A message that is there as a whole, if there is one.
    std::optional<Message> receive();

    /// Whether all that was sent has left.
    bool hasSentAll();

    /// Whether bytes are on their way, so that it is worth looking again soon.
    bool isMoving() const noexcept { return !leaving_.empty() || !arriving_.empty(); }

    /// Ends all ranks at once, in whatever state they are.
    [[noreturn]] static void abort(int status);

private:
    struct Transfer;

    void post(int rank, int tag, std::string bytes);
    void startReceiving();
    void dropSent();

    int rank_ = 0;
    int size_ = 1;
    std::deque<std::unique_ptr<Transfer>> leaving_;
    std::deque<std::unique_ptr<Transfer>> arriving_;  // in the order in which they are given
    std::vector<std::string> begun_;                  // by rank: parts of a message that goes on
};

}  // namespace zqpaths::program::mpi
