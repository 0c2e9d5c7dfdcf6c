#pragma once
// Paths with their numbers as a result of a piece:
//
//     PathGiver give(member, piece.number);   // on the rank that has the piece
//     set.find(pattern, numbers, [&](std::uint64_t number, std::string_view path) {
//         give(number, path);
//     });
//
//     takePaths(part, [&](std::uint64_t number, std::string_view path) { ... });  // on rank 0
//
// Threads: an object belongs to the work of a rank.

#include <cstdint>
#include <functional>
#include <string_view>

#include "tools/zqpaths-mpi/communication/Member.hpp"
#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths-mpi/communication/ResultOrder.hpp"

namespace zqpaths::program::mpi {

class PathGiver {
public:
    PathGiver(Member& member, std::uint64_t piece) noexcept : member_(member), piece_(piece) {}

    void operator()(std::uint64_t number, std::string_view path) {
        record_.clear();
        record_.number(number);
        record_.text(path);
        member_.give(piece_, record_.bytes());
    }

private:
    Member& member_;
    std::uint64_t piece_;
    MessageWriter record_;
};

void takePaths(const ResultPart& part,
               const std::function<void(std::uint64_t number, std::string_view path)>& take);

}  // namespace zqpaths::program::mpi
