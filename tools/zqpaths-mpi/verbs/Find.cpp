#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "tools/zqpaths-mpi/paths/NumberPieces.hpp"
#include "tools/zqpaths-mpi/paths/PathRecords.hpp"
#include "tools/zqpaths-mpi/paths/TeamProgress.hpp"
#include "tools/zqpaths-mpi/paths/TeamSet.hpp"
#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"
#include "tools/zqpaths/arguments/PatternOptions.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "zqpaths/Pattern.hpp"

namespace zqpaths::program::mpi {
namespace {

struct FindOptions {
    std::string set;
    PatternOptions pattern;
    bool numbered = false;
    bool countOnly = false;
    bool statusOnly = false;
    bool partial = false;
    bool gone = false;
    OutputOptions output;
    MessageOptions messages;
};

/// The search of a set by all ranks, piece by piece.
class Search {
public:
    Search(Team& team, const PathSet& set, const FindOptions& options)
        : team_(team),
          set_(set),
          options_(options),
          wanted_(set, options.gone),
          pattern_(patternOf(options.pattern)),
          pieces_(set.size(), searchedAtOnce(set.size(), team.size())) {}

    /// Each returns how many match, as far as rank 0 knows; 0 on the other ranks.

    std::uint64_t printMatches();
    std::uint64_t printCount();

    /// Not more than that there are any: no piece is dealt after the first that has one.
    std::uint64_t lookForOne();

private:
    void givePaths(Member& member, std::uint64_t piece) const;
    void giveCount(Member& member, std::uint64_t piece, bool isOneEnough) const;
    void run(const std::function<void(Member& member, std::uint64_t piece)>& search,
             const std::function<void(const ResultPart& part)>& take,
             std::function<std::optional<std::string>()> nextPiece);

    Team& team_;
    const PathSet& set_;
    const FindOptions& options_;
    WantedPaths wanted_;
    Pattern pattern_;
    NumberPieces pieces_;
};

void Search::givePaths(Member& member, std::uint64_t piece) const {
    PathGiver give(member, piece);
    set_.find(pattern_, pieces_.numbers(piece), [&](std::uint64_t number, std::string_view path) {
        if (wanted_.has(number)) give(number, path);
        return !member.isStopped();
    });
}

void Search::giveCount(Member& member, std::uint64_t piece, bool isOneEnough) const {
    std::uint64_t count = 0;
    set_.findNumbers(pattern_, pieces_.numbers(piece),
                     [&](std::uint64_t first, std::uint64_t last) {
                         count += wanted_.count(first, last);
                         return !member.isStopped() && !(isOneEnough && count > 0);
                     });
    MessageWriter record;
    record.number(count);
    member.give(piece, record.bytes());
}

void Search::run(const std::function<void(Member& member, std::uint64_t piece)>& search,
                 const std::function<void(const ResultPart& part)>& take,
                 std::function<std::optional<std::string>()> nextPiece) {
    TeamProgress progress(team_, "finding", options_.messages, set_.size(),
                          Progress::Prints::kPaths);
    team_.run({.work =
                   [&](Member& member) {
                       forEachPiece(member, [&](const Piece& piece) {
                           search(member, piece.number);
                           member.advance(pieces_.size(piece.number));
                       });
                   },
               .nextPiece = std::move(nextPiece),
               .take = take,
               .advance = progress.counter()});
}

std::uint64_t Search::printMatches() {
    OutputManner manner;
    if (options_.numbered) manner.asText = {PathField::kNumber, PathField::kPath};
    Output output(options_.output, std::move(manner));
    std::uint64_t count = 0;
    run([this](Member& member, std::uint64_t piece) { givePaths(member, piece); },
        [&](const ResultPart& part) {
            takePaths(part, [&](std::uint64_t number, std::string_view path) {
                ++count;
                output.path(number, path);
            });
        },
        numberedPieces(pieces_.count()));
    output.finish();
    return count;
}

std::uint64_t Search::printCount() {
    std::uint64_t count = 0;
    run([this](Member& member, std::uint64_t piece) { giveCount(member, piece, false); },
        [&](const ResultPart& part) { count += MessageReader(part.bytes).number(); },
        numberedPieces(pieces_.count()));
    Output output(options_.output);
    output.count(count);
    output.finish();
    return count;
}

std::uint64_t Search::lookForOne() {
    std::uint64_t count = 0;
    const auto pieces = numberedPieces(pieces_.count());
    run([this](Member& member, std::uint64_t piece) { giveCount(member, piece, true); },
        [&](const ResultPart& part) { count += MessageReader(part.bytes).number(); },
        [&]() -> std::optional<std::string> {
            if (count > 0) return std::nullopt;
            return pieces();
        });
    return count;
}

ExitStatus find(Team& team, const FindOptions& options) {
    const PathSet set = openOnAll(team, options.set, options.partial);
    Search search(team, set, options);
    const std::uint64_t count = options.statusOnly  ? search.lookForOne()
                                : options.countOnly ? search.printCount()
                                                    : search.printMatches();
    return count > 0 ? ExitStatus::kDone : ExitStatus::kNegative;
}

}  // namespace

Verb findVerb(Team& team) {
    const auto options = std::make_shared<FindOptions>();
    return {
        .name = "find",
        .synopsis = "SET PATTERN",
        .summary = "print the paths that match a glob",
        .examples = {"mpiexec -n 4 zqpaths-mpi find data.zqs '*.hpp' -0 | xargs -0 wc -l",
                     "mpiexec -n 4 zqpaths-mpi find data.zqs -c -r 'lib[^/]*\\.so(\\.[0-9]+)*$'"},
        .details = kPatternDetails,
        .options = rows(
            setArgument(options->set), patternOptions(options->pattern),
            flag("-c,--count", options->countOnly, "print only how many match"),
            flag("-q,--quiet", options->statusOnly, "print nothing; status 0 if something matches"),
            partialOption(options->partial), goneOption(options->gone),
            outputOptions(options->output),
            excluding("--fields", flag("-n,--number", options->numbered,
                                       "print the number and a tab before each path")),
            progressOptions(options->messages)),
        .run = [&team, options] { return find(team, *options); }};
}

}  // namespace zqpaths::program::mpi
