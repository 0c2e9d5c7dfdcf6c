#include "tools/zqpaths-mpi/communication/ResultOrder.hpp"

#include <utility>

namespace zqpaths::program::mpi {

void ResultOrder::add(ResultPart part) {
    waiting_[part.piece].push_back(std::move(part));
}

std::optional<ResultPart> ResultOrder::next() {
    const auto place = waiting_.find(piece_);
    if (place == waiting_.end()) return std::nullopt;
    ResultPart part = std::move(place->second.front());
    place->second.pop_front();
    if (place->second.empty()) waiting_.erase(place);
    if (part.isLast) ++piece_;
    return part;
}

}  // namespace zqpaths::program::mpi
