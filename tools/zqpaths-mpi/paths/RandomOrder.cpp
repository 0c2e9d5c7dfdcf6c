#include "tools/zqpaths-mpi/paths/RandomOrder.hpp"

#include <algorithm>
#include <string_view>
#include <vector>

#include "tools/zqpaths-mpi/paths/NumberPieces.hpp"
#include "tools/zqpaths-mpi/paths/PathRecords.hpp"
#include "tools/zqpaths-mpi/paths/TeamProgress.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/sets/ChosenPaths.hpp"
#include "zqpaths/choosing/Permutation.hpp"

namespace zqpaths::program::mpi {

std::uint64_t commonSeed(Team& team, const std::optional<std::uint64_t>& given,
                         const MessageOptions& messages) {
    if (given) return *given;
    return numberOfFirst(team, team.isFirst() ? seedFor(given, messages) : 0);
}

void printInRandomOrder(Team& team, const WantedPaths& wanted, std::uint64_t count,
                        std::uint64_t seed, const std::string& work,
                        const OutputOptions& outputOptions, const MessageOptions& messages) {
    const Permutation order(wanted.size(), seed);
    const std::uint64_t printed = std::min(count, order.size());
    const NumberPieces pieces(printed, kPathsPerCall);
    Output output(outputOptions, {.isQuiet = messages.quiet});
    TeamProgress progress(team, work, messages, printed, Progress::Prints::kPaths);
    const auto fetch = [&](Member& member, std::uint64_t piece) {
        std::vector<std::uint64_t> numbers;
        for (std::uint64_t place = pieces.begin(piece); place < pieces.end(piece); ++place)
            numbers.push_back(wanted.numberAt(order[place]));
        PathGiver give(member, piece);
        wanted.set().paths(
            numbers, [&](std::uint64_t number, std::string_view path) { give(number, path); });
        member.advance(numbers.size());
    };
    team.run({.work =
                  [&](Member& member) {
                      forEachPiece(member,
                                   [&](const Piece& piece) { fetch(member, piece.number); });
                  },
              .nextPiece = numberedPieces(pieces.count()),
              .take =
                  [&](const ResultPart& part) {
                      takePaths(part, [&](std::uint64_t number, std::string_view path) {
                          output.path(number, path);
                      });
                  },
              .advance = progress.counter()});
    output.finish();
}

}  // namespace zqpaths::program::mpi
