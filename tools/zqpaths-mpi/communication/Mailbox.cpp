#include "tools/zqpaths-mpi/communication/Mailbox.hpp"

#include <mpi.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program::mpi {
namespace {

// A message is cut where MPI would still count much further, so that parts of long ones are handed
// on while others come.
constexpr std::size_t kMostBytesAPart = std::size_t{4} << 20;

// Messages that are received at the same time: a few hide the time that each takes.
constexpr std::size_t kMostArriving = 16;

// A tag is the kind of a message and, in its lowest bit, whether more parts of it follow.
int tagOf(MessageKind kind, bool goesOn) {
    return static_cast<int>(kind) * 2 + (goesOn ? 1 : 0);
}

}  // namespace

MpiSession::MpiSession() {
    int provided = MPI_THREAD_SINGLE;
    MPI_Init_thread(nullptr, nullptr, MPI_THREAD_FUNNELED, &provided);
    if (provided >= MPI_THREAD_FUNNELED) return;
    MPI_Finalize();
    throw Failure(ExitStatus::kFailed, "this MPI allows no threads beside it");
}

MpiSession::~MpiSession() {
    MPI_Finalize();
}

/// Bytes that are being sent or received.
struct Mailbox::Transfer {
    int rank = 0;
    int tag = 0;
    std::string bytes;
    MPI_Request request = MPI_REQUEST_NULL;

    bool isDone() {
        int done = 0;
        MPI_Test(&request, &done, MPI_STATUS_IGNORE);
        return done != 0;
    }
};

Mailbox::Mailbox() {
    MPI_Comm_rank(MPI_COMM_WORLD, &rank_);
    MPI_Comm_size(MPI_COMM_WORLD, &size_);
    begun_.resize(static_cast<std::size_t>(size_));
}

Mailbox::~Mailbox() = default;

void Mailbox::send(Message message) {
    const std::string_view bytes = message.bytes;
    std::size_t sent = 0;
    for (; bytes.size() - sent > kMostBytesAPart; sent += kMostBytesAPart)
        post(message.rank, tagOf(message.kind, true),
             std::string(bytes.substr(sent, kMostBytesAPart)));
    post(message.rank, tagOf(message.kind, false),
         sent == 0 ? std::move(message.bytes) : std::string(bytes.substr(sent)));
}

void Mailbox::post(int rank, int tag, std::string bytes) {
    auto part = std::make_unique<Transfer>(Transfer{rank, tag, std::move(bytes)});
    MPI_Isend(part->bytes.data(), static_cast<int>(part->bytes.size()), MPI_BYTE, rank, tag,
              MPI_COMM_WORLD, &part->request);
    leaving_.push_back(std::move(part));
    // NOLINTNEXTLINE(clang-analyzer-optin.mpi.MPI-Checker): receive() waits for it
}

std::optional<Message> Mailbox::receive() {
    dropSent();
    startReceiving();
    while (!arriving_.empty() && arriving_.front()->isDone()) {
        const std::unique_ptr<Transfer> part = std::move(arriving_.front());
        arriving_.pop_front();
        std::string& begun = begun_[static_cast<std::size_t>(part->rank)];
        const bool goesOn = part->tag % 2 != 0;
        if (goesOn || !begun.empty()) begun += part->bytes;
        if (goesOn) continue;
        std::string bytes = begun.empty() ? std::move(part->bytes) : std::exchange(begun, {});
        return Message{part->rank, static_cast<MessageKind>(part->tag / 2), std::move(bytes)};
    }
    return std::nullopt;
}

void Mailbox::startReceiving() {
    while (arriving_.size() < kMostArriving) {
        int isThere = 0;
        MPI_Message message = MPI_MESSAGE_NULL;
        MPI_Status status;
        MPI_Improbe(MPI_ANY_SOURCE, MPI_ANY_TAG, MPI_COMM_WORLD, &isThere, &message, &status);
        if (isThere == 0) return;
        int size = 0;
        MPI_Get_count(&status, MPI_BYTE, &size);
        auto part = std::make_unique<Transfer>();
        part->rank = status.MPI_SOURCE;
        part->tag = status.MPI_TAG;
        part->bytes.resize(static_cast<std::size_t>(size));
        MPI_Imrecv(part->bytes.data(), size, MPI_BYTE, &message, &part->request);
        arriving_.push_back(std::move(part));
    }
}

void Mailbox::dropSent() {
    std::erase_if(leaving_, [](const std::unique_ptr<Transfer>& part) { return part->isDone(); });
}

bool Mailbox::hasSentAll() {
    dropSent();
    return leaving_.empty();
}

void Mailbox::abort(int status) {
    MPI_Abort(MPI_COMM_WORLD, status);
    std::abort();  // MPI_Abort does not return
}

}  // namespace zqpaths::program::mpi
