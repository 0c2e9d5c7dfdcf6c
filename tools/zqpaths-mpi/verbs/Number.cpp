#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths-mpi/paths/PathRecords.hpp"
#include "tools/zqpaths-mpi/paths/TeamSet.hpp"
#include "tools/zqpaths-mpi/verbs/TeamVerbs.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sources/ListSource.hpp"

namespace zqpaths::program::mpi {
namespace {

constexpr std::size_t kBytesABatch = std::size_t{1} << 20;

constexpr std::uint64_t kNone = 0;  // in place of a number, which is at least 1

struct NumberOptions {
    std::string set;
    std::vector<std::string> paths;
    std::optional<std::string> list;
    bool nulDelimited = false;
    bool partial = false;
    OutputOptions output;
    MessageOptions messages;
};

/// Looks for paths in the segments of this rank: as many neighbours as other ranks have.
class OwnSegments {
public:
    OwnSegments(const PathSet& set, const Member& member) : set_(set) {
        const auto rank = static_cast<std::uint64_t>(member.rank());
        const auto rankCount = static_cast<std::uint64_t>(member.size());
        first_ = set.segmentCount() * rank / rankCount;
        count_ = set.segmentCount() * (rank + 1) / rankCount - first_;
    }

    /// The numbers of the paths in a batch, or kNone, as a parcel.
    std::string numbersOf(std::string_view batch) const {
        MessageReader paths(batch);
        MessageWriter numbers;
        while (!paths.isAtEnd()) {
            const std::string_view path = paths.text();
            numbers.number(count_ == 0 ? kNone
                                       : set_.numberOf(path, first_, count_).value_or(kNone));
        }
        return numbers.take();
    }

private:
    const PathSet& set_;
    std::uint64_t first_ = 0;
    std::uint64_t count_ = 0;
};

/// Rank 0 gives all paths to `take`: those that are arguments, or a list as it comes.
void readPaths(const NumberOptions& options,
               const std::function<void(std::string_view path)>& take) {
    if (options.list)
        ListSource(*options.list, options.nulDelimited).visit(take);
    else
        std::ranges::for_each(options.paths, take);
}

/// What rank 0 does: sends paths to all in batches, each of which is a piece, and gives them with
/// the lowest numbers that came back.
class Asker {
public:
    Asker(Member& member, const OwnSegments& own) : member_(member), own_(own) {}

    void ask(std::string_view path) {
        batch_.text(path);
        if (batch_.size() >= kBytesABatch) finishBatch();
    }

    /// An empty batch is the last one.
    void finish() {
        if (batch_.size() > 0) finishBatch();
        sendToOthers("");
    }

private:
    void sendToOthers(const std::string& parcel) {
        for (int other = 1; other < member_.size(); ++other) member_.send(other, parcel);
    }

    void finishBatch() {
        const std::string batch = batch_.take();
        sendToOthers(batch);
        std::vector<std::string> answers{own_.numbersOf(batch)};
        for (int other = 1; other < member_.size(); ++other)
            answers.push_back(member_.receive(other));
        std::vector<MessageReader> numbers(answers.begin(), answers.end());
        PathGiver give(member_, batchCount_);
        MessageReader paths(batch);
        while (!paths.isAtEnd()) {
            std::uint64_t lowest = kNone;
            // Ranks have segments in their order: the first that has it has the lowest number.
            for (MessageReader& numbersOfRank : numbers) {
                const std::uint64_t number = numbersOfRank.number();
                if (lowest == kNone) lowest = number;
            }
            give(lowest, paths.text());
        }
        member_.finish(batchCount_++);
    }

    Member& member_;
    const OwnSegments& own_;
    MessageWriter batch_;
    std::uint64_t batchCount_ = 0;
};

void answer(Member& member, const OwnSegments& own) {
    for (std::string batch = member.receive(0); !batch.empty(); batch = member.receive(0))
        member.send(0, own.numbersOf(batch));
}

ExitStatus numberPaths(Team& team, const NumberOptions& options) {
    if (options.paths.empty() && !options.list) throw wrongUse("PATH or --list is required");
    const PathSet set = openOnAll(team, options.set, options.partial);
    Output output(options.output,
                  {.asText = {PathField::kNumber}, .isQuiet = options.messages.quiet});
    bool isAnyMissing = false;
    const auto print = [&](std::uint64_t found, std::string_view path) {
        isAnyMissing = isAnyMissing || found == kNone;
        if (found != kNone) output.path(found, path);
        if (options.messages.quiet) return;
        if (found == kNone)
            tell(printablePath(path) + ": is not in " + printablePath(options.set));
        else if (set.isGone(found))
            tell(printablePath(path) + ": is gone");
    };
    team.run({.work =
                  [&](Member& member) {
                      const OwnSegments own(set, member);
                      if (member.rank() != 0) return answer(member, own);
                      Asker asker(member, own);
                      readPaths(options, [&](std::string_view path) { asker.ask(path); });
                      asker.finish();
                  },
              .take = [&](const ResultPart& part) { takePaths(part, print); }});
    output.finish();
    return isAnyMissing ? ExitStatus::kNegative : ExitStatus::kDone;
}

}  // namespace

Verb numberVerb(Team& team) {
    const auto options = std::make_shared<NumberOptions>();
    Option paths = arguments("PATH", options->paths, "the paths");
    paths.isRequired = false;  // with a list
    Option list = excluding("PATH", text("--list", kFileValue, options->list,
                                         "the paths in FILE, - for standard input"));
    Option nulDelimited = flag("--list-null", options->nulDelimited,
                               "the paths of the list end with NUL, not with a newline");
    nulDelimited.needed = "--list";
    return {
        .name = "number",
        .synopsis = "SET PATH... | SET --list FILE",
        .summary = "print the numbers of exact paths",
        .examples = {"mpiexec -n 4 zqpaths-mpi number data.zqs --list wanted.txt",
                     "mpiexec -n 4 zqpaths-mpi number data.zqs /usr/bin/env --json"},
        .details =
            "Each rank looks through its part of the set. A path that occurs more than once has "
            "its first number printed. Status 1 tells that a path is not there; the numbers of "
            "the others are printed. A list is read in pieces, and may be of any length.",
        .options = rows(setArgument(options->set), std::move(paths), std::move(list),
                        std::move(nulDelimited), partialOption(options->partial),
                        outputOptions(options->output), messageOptions(options->messages)),
        .run = [&team, options] { return numberPaths(team, *options); }};
}

}  // namespace zqpaths::program::mpi
