#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths-mpi/paths/DealtHashes.hpp"
#include "tools/zqpaths-mpi/paths/NumberPieces.hpp"
#include "tools/zqpaths-mpi/paths/PathRecords.hpp"
#include "tools/zqpaths-mpi/paths/TeamProgress.hpp"
#include "tools/zqpaths-mpi/paths/TeamSet.hpp"
#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"
#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sets/SeenPaths.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"

namespace zqpaths::program::mpi {
namespace {

// What a rank reads before it exchanges hashes: two to three megabytes of them.
constexpr std::uint64_t kPathsARound = std::uint64_t{1} << 17;

// What a rank prints before the next round: two megabytes of numbers at most.
constexpr std::uint64_t kNumbersAPiece = std::uint64_t{1} << 18;

constexpr std::array kSides{Side::kFirst, Side::kSecond};

struct DiffOptions {
    std::string first;
    std::string second;
    bool partial = false;
    OutputOptions output;
    MessageOptions messages;
};

/// What a rank knows of the paths that only one of two sets has.
///
/// First each rank reads some numbers of both sets and sends the hash of each path, with its
/// number, to the rank that the hash is dealt to. That one hears of a path from both sets, if both
/// have it, and so knows what only one has; but these numbers lie anywhere in the set:
///
///     rank 0 knows of  2  17  40 ...      piece 0 of the numbers  ▶ rank 0
///     rank 1 knows of  5  16  41 ...      piece 1                 ▶ rank 1
///                                         piece 2                 ▶ rank 0 ...
///
/// Therefore each rank then collects the numbers of some pieces from all, and gives their paths.
class Comparison {
public:
    Comparison(const PathSet& first, const PathSet& second, std::uint64_t seed)
        : sets_{&first, &second}, seed_(seed) {}

    /// Deals the hashes of both sets; all ranks do so.
    void dealHashes(Member& member);

    /// Gives the paths that only one side has, piece by piece: those of A, then those of B.
    void givePaths(Member& member);

    /// The side that a piece is of.
    Side sideOf(std::uint64_t piece) const noexcept {
        return piece < piecesOf(Side::kFirst).count() ? Side::kFirst : Side::kSecond;
    }

private:
    const PathSet& setOf(Side side) const noexcept {
        return *sets_[static_cast<std::size_t>(side)];
    }
    NumberPieces piecesOf(Side side) const noexcept { return {setOf(side).size(), kNumbersAPiece}; }

    void dealSide(Member& member, Side side);
    void dealRange(Member& member, Side side, PathNumbers numbers,
                   std::vector<MessageWriter>& parcels) const;
    void addHashes(std::string_view parcel);
    void giveSide(Member& member, Side side, const std::vector<std::uint64_t>& ownNumbers) const;
    void givePiece(Member& member, Side side, std::uint64_t piece,
                   const std::vector<std::string>& parcels) const;

    std::array<const PathSet*, 2> sets_;
    std::uint64_t seed_;
    DealtHashes hashes_;
};

std::vector<std::string> bytesOf(std::vector<MessageWriter>& writers) {
    std::vector<std::string> parcels;
    parcels.reserve(writers.size());
    for (MessageWriter& writer : writers) parcels.push_back(writer.take());
    return parcels;
}

/// The numbers that a rank reads, some after the other, so many at a time; then none.
class OwnRounds {
public:
    OwnRounds(std::uint64_t total, const Member& member) {
        const auto rank = static_cast<std::uint64_t>(member.rank());
        const auto rankCount = static_cast<std::uint64_t>(member.size());
        const std::uint64_t share = total / rankCount;
        const std::uint64_t left = total % rankCount;  // one each to the first ranks
        next_ = share * rank + std::min(rank, left);
        end_ = next_ + share + (rank < left ? 1 : 0);
    }

    bool isAtEnd() const noexcept { return next_ == end_; }

    std::optional<PathNumbers> next() noexcept {
        if (isAtEnd()) return std::nullopt;
        const std::uint64_t first = next_ + 1;
        next_ += std::min(kPathsARound, end_ - next_);
        return PathNumbers{first, next_};
    }

private:
    std::uint64_t next_;  // places from 0 on
    std::uint64_t end_;
};

// A parcel of hashes: whether the rank that sends it has more to read; then of each path the side,
// the hash, in two numbers as they are, and the number.

void Comparison::dealRange(Member& member, Side side, PathNumbers numbers,
                           std::vector<MessageWriter>& parcels) const {
    const WantedPaths wanted(setOf(side), false);
    setOf(side).forEach(
        numbers.first, numbers.last, [&](std::uint64_t number, std::string_view path) {
            if (!wanted.has(number)) return;
            const XXH128_hash_t hash = XXH3_128bits_withSeed(path.data(), path.size(), seed_);
            MessageWriter& parcel = parcels[static_cast<std::size_t>(rankOf(hash, member.size()))];
            parcel.number(static_cast<std::uint64_t>(side));
            parcel.fixed(hash.low64);
            parcel.fixed(hash.high64);
            parcel.number(number);
        });
    member.advance(numbers.last - numbers.first + 1);
}

void Comparison::addHashes(std::string_view parcel) {
    MessageReader reader(parcel);
    while (!reader.isAtEnd()) {
        const auto side = static_cast<Side>(reader.number());
        XXH128_hash_t hash;
        hash.low64 = reader.fixed();
        hash.high64 = reader.fixed();
        hashes_.add(hash, side, reader.number());
    }
}

void Comparison::dealHashes(Member& member) {
    for (const Side side : kSides) dealSide(member, side);
}

/// In rounds, until no rank has more to read.
void Comparison::dealSide(Member& member, Side side) {
    OwnRounds rounds(setOf(side).size(), member);
    bool isAnyLeft = true;
    while (isAnyLeft) {
        std::vector<MessageWriter> parcels(static_cast<std::size_t>(member.size()));
        const std::optional<PathNumbers> numbers = rounds.next();
        for (MessageWriter& parcel : parcels) parcel.number(rounds.isAtEnd() ? 0 : 1);
        if (numbers) dealRange(member, side, *numbers, parcels);
        isAnyLeft = false;
        for (const std::string& parcel : member.exchange(bytesOf(parcels))) {
            MessageReader reader(parcel);
            isAnyLeft = reader.number() != 0 || isAnyLeft;
            addHashes(reader.rest());
        }
    }
}

void Comparison::givePaths(Member& member) {
    const std::vector<std::uint64_t> onlyInFirst = hashes_.numbersOnlyIn(Side::kFirst);
    const std::vector<std::uint64_t> onlyInSecond = hashes_.numbersOnlyIn(Side::kSecond);
    hashes_ = {};  // its memory is several times theirs
    giveSide(member, Side::kFirst, onlyInFirst);
    giveSide(member, Side::kSecond, onlyInSecond);
}

/// In rounds of as many pieces as there are ranks. A parcel has the numbers that the sender knows
/// of in the piece of the receiver, each as its distance from the one before.
void Comparison::giveSide(Member& member, Side side,
                          const std::vector<std::uint64_t>& ownNumbers) const {
    const NumberPieces pieces = piecesOf(side);
    const auto rankCount = static_cast<std::uint64_t>(member.size());
    auto next = ownNumbers.begin();
    for (std::uint64_t begin = 0; begin < pieces.count(); begin += rankCount) {
        std::vector<MessageWriter> parcels(rankCount);
        const std::uint64_t end = std::min(begin + rankCount, pieces.count());
        for (std::uint64_t piece = begin; piece < end; ++piece) {
            std::uint64_t before = 0;
            for (; next != ownNumbers.end() && *next <= pieces.end(piece); ++next)
                parcels[piece - begin].number(*next - std::exchange(before, *next));
        }
        const std::uint64_t ownPiece = begin + static_cast<std::uint64_t>(member.rank());
        const std::vector<std::string> received = member.exchange(bytesOf(parcels));
        if (ownPiece < end) givePiece(member, side, ownPiece, received);
    }
}

void Comparison::givePiece(Member& member, Side side, std::uint64_t piece,
                           const std::vector<std::string>& parcels) const {
    std::vector<std::uint64_t> numbers;
    for (const std::string& parcel : parcels) {
        MessageReader reader(parcel);
        for (std::uint64_t number = 0; !reader.isAtEnd();)
            numbers.push_back(number += reader.number());
    }
    std::ranges::sort(numbers);
    const std::uint64_t before = side == Side::kFirst ? 0 : piecesOf(Side::kFirst).count();
    PathGiver give(member, before + piece);
    setOf(side).paths(numbers,
                      [&](std::uint64_t number, std::string_view path) { give(number, path); });
    member.finish(before + piece);
}

ExitStatus diff(Team& team, const DiffOptions& options) {
    const PathSet first = openOnAll(team, options.first, options.partial);
    const PathSet second = openOnAll(team, options.second, options.partial);
    nameWhatIsRead(printablePath(options.first) + " or " + printablePath(options.second));
    Output output(options.output, {.markKey = kSideKey, .isQuiet = options.messages.quiet});
    TeamProgress progress(team, "comparing", options.messages, first.size() + second.size(),
                          Progress::Prints::kPaths);
    Comparison comparison(first, second, numberOfFirst(team, team.isFirst() ? newHashSeed() : 0));
    bool isAny = false;
    const auto print = [&](const ResultPart& part) {
        takePaths(part, [&](std::uint64_t number, std::string_view path) {
            isAny = true;
            output.pathIn(comparison.sideOf(part.piece), number, path);
        });
    };
    team.run({.work =
                  [&](Member& member) {
                      comparison.dealHashes(member);
                      comparison.givePaths(member);
                  },
              .take = print,
              .advance = progress.counter()});
    output.finish();
    return isAny ? ExitStatus::kNegative : ExitStatus::kDone;
}

}  // namespace

Verb diffVerb(Team& team) {
    const auto options = std::make_shared<DiffOptions>();
    return {
        .name = "diff",
        .synopsis = "A B",
        .summary = "print the paths that only one of two sets has",
        .examples = {"mpiexec -n 4 zqpaths-mpi diff monday.zqs tuesday.zqs",
                     "mpiexec -n 4 zqpaths-mpi diff --json monday.zqs tuesday.zqs"},
        .details =
            "Paths only in A follow '< ', then paths only in B follow '> ', each once and in "
            "the order of numbers; order does not make sets differ. Status 1 tells that there "
            "are any. All ranks together hold 24 bytes for each path of either set, in tables "
            "with room for at most 2.7 times as many.",
        .options = rows(argument("A", options->first, "a saved set"),
                        argument("B", options->second, "another"), partialOption(options->partial),
                        outputOptions(options->output), messageOptions(options->messages)),
        .run = [&team, options] { return diff(team, *options); }};
}

}  // namespace zqpaths::program::mpi
