#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths-mpi/paths/TeamProgress.hpp"
#include "tools/zqpaths-mpi/paths/TeamSet.hpp"
#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/VerifyReport.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"

namespace zqpaths::program::mpi {
namespace {

struct VerifyOptions {
    std::string set;
    bool partial = false;
    OutputOptions output;
    MessageOptions messages;
};

// An error travels as its kind and its text, which names the file already.

void giveError(Member& member, std::uint64_t piece, const Error& error) {
    MessageWriter record;
    record.number(static_cast<std::uint64_t>(error.kind()));
    record.text(error.what());
    member.give(piece, record.bytes());
}

void takeErrors(const ResultPart& part, std::vector<Error>& errors) {
    MessageReader reader(part.bytes);
    while (!reader.isAtEnd()) {
        const auto kind = static_cast<ErrorKind>(reader.number());
        errors.emplace_back(kind, "", reader.text());
    }
}

/// All damages, in the order of the files; on rank 0.
std::vector<Error> damagesOf(Team& team, const PathSet& set, const MessageOptions& messages) {
    std::vector<Error> damages;
    TeamProgress progress(team, "verifying", messages, set.size());
    const auto verifyFile = [&](Member& member, const Piece& piece) {
        const auto place = static_cast<std::size_t>(piece.number);
        const auto count = [&member](WorkStep step, std::uint64_t items) {
            if (step == WorkStep::kReading) member.advance(items);
        };
        for (const Error& error : set.verifyFile(place, count))
            giveError(member, piece.number, error);
    };
    team.run({.work =
                  [&](Member& member) {
                      forEachPiece(member, [&](const Piece& piece) { verifyFile(member, piece); });
                  },
              .nextPiece = numberedPieces(set.fileCount()),
              .take = [&](const ResultPart& part) { takeErrors(part, damages); },
              .advance = progress.counter()});
    return damages;
}

ExitStatus verify(Team& team, const VerifyOptions& options) {
    const PathSet set = openOnAll(team, options.set, options.partial);
    Output output(options.output, {.isQuiet = options.messages.quiet});
    const std::vector<Error> damages = damagesOf(team, set, options.messages);
    if (!team.isFirst()) return ExitStatus::kDone;
    VerifiedSet verified{options.set, set.size()};
    if (options.partial) verified.unreadCount = missingPathCountOf(set);
    requireNoDamage(verified, damages, options.output, output);
    tellWhole(verified, options.output, options.messages, output);
    output.finish();
    return ExitStatus::kDone;
}

}  // namespace

Verb verifyVerb(Team& team) {
    const auto options = std::make_shared<VerifyOptions>();
    return {
        .name = "verify",
        .synopsis = "SET",
        .summary = "read everything and tell what is damaged",
        .examples = {"mpiexec -n 4 zqpaths-mpi verify data.zqs",
                     "mpiexec -n 4 zqpaths-mpi verify data.zqs --json"},
        .details =
            "A rank verifies a set file at a time, so that a set of one file takes one rank. "
            "With --json the last object tells of the set as a whole, and also of damage, which "
            "ends with status 3.",
        .options = rows(setArgument(options->set), partialOption(options->partial),
                        outputOptions(options->output), messageOptions(options->messages)),
        .run = [&team, options] { return verify(team, *options); }};
}

}  // namespace zqpaths::program::mpi
