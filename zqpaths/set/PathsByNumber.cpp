#include "zqpaths/set/PathsByNumber.hpp"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "zqpaths/set/OrderedWork.hpp"
#include "zqpaths/set/PathBuffer.hpp"

namespace zqpaths {
namespace {

/// The paths of some numbers, ascending and none twice, and where the one is that each number asks
/// for. Not all of them where they are so long that they are better fetched one by one.
struct Piece {
    std::span<const std::uint64_t> numbers;
    PathBuffer paths;
    std::vector<std::uint32_t> places;
    bool hasAll = false;
};

Piece makePiece(const OpenedSet& set, std::span<const std::uint64_t> numbers) {
    std::vector<std::pair<std::uint64_t, std::uint32_t>> order(numbers.size());
    for (std::uint32_t i = 0; i < order.size(); ++i) order[i] = {numbers[i], i};
    if (!std::ranges::is_sorted(numbers)) std::ranges::sort(order);

    Piece piece{numbers, {}, std::vector<std::uint32_t>(numbers.size()), false};
    std::vector<std::uint64_t> ascending;
    ascending.reserve(numbers.size());
    for (const auto& [number, asked] : order) {
        if (ascending.empty() || ascending.back() != number) ascending.push_back(number);
        piece.places[asked] = static_cast<std::uint32_t>(ascending.size() - 1);
    }
    piece.hasAll = set.appendPaths(ascending, piece.paths);
    if (!piece.hasAll) piece.paths = {};
    return piece;
}

bool visitPiece(const OpenedSet& set, const Piece& piece, PathVisitor visit) {
    if (piece.hasAll)
        return std::ranges::all_of(piece.places, [&](std::uint32_t place) {
            return visit(piece.paths.numberAt(place), piece.paths[place]);
        });
    std::string path;
    return std::ranges::all_of(piece.numbers, [&](std::uint64_t number) {
        path.clear();
        set.appendPath(number, path);
        return visit(number, path);
    });
}

/// Far apart, some thousands of paths take as long as starting many threads.
unsigned threadsForScattered(std::size_t pathCount) noexcept {
    constexpr std::size_t kFew = 2000;
    return pathCount < kFew ? 1 : threadCount();
}

}  // namespace

void visitByNumber(const OpenedSet& set, std::span<const std::uint64_t> numbers,
                   PathVisitor visit) {
    const unsigned threads = threadsForScattered(numbers.size());
    // As many pieces for each thread, and of one size, so that none waits for the others.
    const std::size_t mostAPiece = kPathsPerPiece * threads;
    const std::size_t pieceCount = (numbers.size() + mostAPiece - 1) / mostAPiece * threads;
    const auto beginOf = [&](std::size_t piece) { return numbers.size() * piece / pieceCount; };
    const auto make = [&](std::size_t piece) {
        const std::size_t begin = beginOf(piece);
        return makePiece(set, numbers.subspan(begin, beginOf(piece + 1) - begin));
    };
    makeInOrder(pieceCount, threads, make,
                [&](const Piece& piece) { return visitPiece(set, piece, visit); });
}

}  // namespace zqpaths
