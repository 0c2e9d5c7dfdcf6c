#include "tools/zqpaths-mpi/communication/Member.hpp"

#include <utility>

namespace zqpaths::program::mpi {
namespace {

// Messages and their places in queues are not free where pieces have no results.
constexpr std::size_t kCostOfAPart = 128;

}  // namespace

std::size_t costOf(std::size_t bytes) noexcept {
    return kCostOfAPart + bytes;
}

Member::Member(int rank, int size)
    : rank_(rank), size_(size), parcels_(static_cast<std::size_t>(size)) {}

std::optional<Piece> Member::nextPiece() {
    std::unique_lock lock(mutex_);
    if (!areAllDealt_) {
        post({0, MessageKind::kWant});
        wait(lock, [this] { return dealt_ || areAllDealt_; });
    }
    return std::exchange(dealt_, std::nullopt);
}

void Member::give(std::uint64_t piece, std::string_view record) {
    given_ += record;
    if (given_.size() >= kBytesAPart) postResult(piece, false);
}

void Member::finish(std::uint64_t piece) {
    postResult(piece, true);
}

void Member::postResult(std::uint64_t piece, bool isLast) {
    const std::size_t cost = costOf(given_.size());
    std::unique_lock lock(mutex_);
    // One part always has room, however long a record is.
    wait(lock, [&] { return untaken_ == 0 || untaken_ + cost <= kMostUntaken; });
    untaken_ += cost;
    MessageWriter writer;
    writer.number(piece);
    writer.number(isLast ? 1 : 0);
    writer.raw(given_);
    given_.clear();
    post({0, MessageKind::kResult, writer.take()});
}

void Member::send(int to, std::string parcel) {
    const std::lock_guard lock(mutex_);
    post({to, MessageKind::kParcel, std::move(parcel)});
}

std::string Member::receive(int from) {
    std::unique_lock lock(mutex_);
    std::deque<std::string>& queue = parcels_[static_cast<std::size_t>(from)];
    wait(lock, [&] { return !queue.empty(); });
    std::string parcel = std::move(queue.front());
    queue.pop_front();
    return parcel;
}

std::vector<std::string> Member::exchange(std::vector<std::string> parcels) {
    std::vector<std::string> received(parcels.size());
    for (int other = 0; other < size_; ++other) {
        std::string& parcel = parcels[static_cast<std::size_t>(other)];
        if (other == rank_)
            received[static_cast<std::size_t>(other)] = std::move(parcel);
        else
            send(other, std::move(parcel));
    }
    for (int other = 0; other < size_; ++other)
        if (other != rank_) received[static_cast<std::size_t>(other)] = receive(other);
    return received;
}

void Member::tell(std::string_view message) {
    const std::lock_guard lock(mutex_);
    post({0, MessageKind::kWords, std::string(message)});
}

void Member::post(Message message) {
    throwIfStopped();
    outgoing_.push_back(std::move(message));
    leaves_.notify_one();
}

void Member::wait(std::unique_lock<std::mutex>& lock, const auto& isReady) {
    arrived_.wait(lock, [&] { return isStopped() || isReady(); });
    throwIfStopped();
}

void Member::beginRun() {
    const std::lock_guard lock(mutex_);
    given_.clear();
    areAllDealt_ = false;
    hasEnded_ = false;
    hasJustEnded_ = false;
    error_ = nullptr;
}

std::vector<Message> Member::outgoing(std::chrono::microseconds wait) {
    std::unique_lock lock(mutex_);
    leaves_.wait_for(lock, wait, [this] { return !outgoing_.empty() || hasJustEnded_; });
    hasJustEnded_ = false;
    return std::exchange(outgoing_, {});
}

void Member::deliver(Message message) {
    MessageReader reader(message.bytes);
    {
        const std::lock_guard lock(mutex_);
        if (message.kind == MessageKind::kPiece) {
            const std::uint64_t number = reader.number();
            dealt_ = Piece{number, std::string(reader.rest())};
        } else if (message.kind == MessageKind::kNoPiece) {
            areAllDealt_ = true;
        } else if (message.kind == MessageKind::kTaken) {
            untaken_ -= reader.number();
        } else {
            parcels_[static_cast<std::size_t>(message.rank)].push_back(std::move(message.bytes));
        }
    }
    arrived_.notify_one();
}

Member::Counts Member::takeCounts() noexcept {
    Counts counts{};
    for (std::size_t phase = 0; phase < counts.size(); ++phase)
        counts[phase] = counts_[phase].exchange(0, std::memory_order_relaxed);
    return counts;
}

void Member::endWork(std::exception_ptr error) noexcept {
    {
        const std::lock_guard lock(mutex_);
        error_ = std::move(error);
        hasEnded_ = true;
        hasJustEnded_ = true;
    }
    leaves_.notify_one();
}

bool Member::hasEnded() const {
    const std::lock_guard lock(mutex_);
    return hasEnded_;
}

std::exception_ptr Member::error() const {
    const std::lock_guard lock(mutex_);
    return error_;
}

void Member::stop() noexcept {
    {
        const std::lock_guard lock(mutex_);
        isStopped_ = true;
    }
    arrived_.notify_one();
}

}  // namespace zqpaths::program::mpi
