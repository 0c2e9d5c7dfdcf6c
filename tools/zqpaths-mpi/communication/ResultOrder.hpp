#pragma once
// ResultOrder brings the results of pieces, which come from several ranks in any order, into the
// order of the pieces. A result comes in parts, which keep their order:
//
//     order.add({.piece = 1, .rank = 2, .bytes = "b", .isLast = true});
//     order.next();  // nothing: piece 0 comes first
//     order.add({.piece = 0, .rank = 1, .bytes = "a", .isLast = true});
//     order.next();  // of piece 0
//     order.next();  // of piece 1
//
// How much it holds is bounded by those who send: a rank has only so many bytes on their way that
// were not taken yet (Member).
//
// Threads: an object belongs to one thread at a time.

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace zqpaths::program::mpi {

/// Some of the result of a piece.
struct ResultPart {
    std::uint64_t piece = 0;  // from 0 on
    int rank = 0;             // that made it
    std::string bytes;
    bool isLast = false;  // of the piece
};

class ResultOrder {
public:
    void add(ResultPart part);

    /// The next part in the order of the pieces, if it is there.
    std::optional<ResultPart> next();

    /// Whether all that was added has been given.
    bool isEmpty() const noexcept { return waiting_.empty(); }

private:
    std::map<std::uint64_t, std::deque<ResultPart>> waiting_;  // by piece
    std::uint64_t piece_ = 0;                                  // whose parts are next
};

}  // namespace zqpaths::program::mpi
