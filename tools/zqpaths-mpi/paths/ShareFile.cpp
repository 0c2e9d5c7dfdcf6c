#include "tools/zqpaths-mpi/paths/ShareFile.hpp"

#include <algorithm>
#include <string_view>
#include <vector>

#include "tools/zqpaths-mpi/paths/TeamProgress.hpp"
#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PathFields.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sets/ChosenPaths.hpp"
#include "tools/zqpaths/sources/FileBeside.hpp"
#include "zqpaths/choosing/Share.hpp"

namespace zqpaths::program::mpi {
namespace {

/// Writes a share into a file, in its order.
void writeShare(Member& member, const WantedPaths& wanted, const ShuffledShare& share,
                Output& output) {
    std::vector<std::uint64_t> numbers;
    for (std::uint64_t begin = 0; begin < share.size(); begin += numbers.size()) {
        member.throwIfStopped();
        numbers.resize(std::min<std::uint64_t>(kPathsPerCall, share.size() - begin));
        for (std::size_t i = 0; i < numbers.size(); ++i)
            numbers[i] = wanted.numberAt(share[begin + i] - 1);
        wanted.set().paths(numbers, [&](std::uint64_t number, std::string_view path) {
            output.path(number, path);
        });
        member.advance(numbers.size());
    }
    output.finish();
}

}  // namespace

std::string nameOfShare(const std::string& name, int rank, int rankCount) {
    std::string digits = std::to_string(rank);
    digits.insert(0, std::to_string(rankCount - 1).size() - digits.size(), '0');
    const std::string_view extension = partOf(PathField::kExtension, name);
    if (extension.empty()) return name + '-' + digits;
    const std::size_t dot = name.size() - extension.size() - 1;
    return name.substr(0, dot) + '-' + digits + name.substr(dot);
}

void writeShares(Team& team, const WantedPaths& wanted, std::uint64_t seed, const ShareFiles& files,
                 const OutputOptions& outputOptions, const MessageOptions& messages) {
    const DeferredSignals signals;
    const auto rank = static_cast<std::uint64_t>(team.rank());
    const ShuffledShare share(wanted.size(), rank, static_cast<std::uint64_t>(team.size()), seed);
    const std::string path = nameOfShare(files.name, team.rank(), team.size());
    if (!files.mayReplace) requireFree(path);
    // Ranks on several machines may have the same process number.
    FileBeside file(path, rank);
    TeamProgress progress(team, "shuffling", messages, wanted.size());
    Output output(outputOptions, {.isQuiet = messages.quiet},
                  {file.descriptor(), printablePath(path)});
    team.run({.work =
                  [&](Member& member) {
                      writeShare(member, wanted, share, output);
                      file.sync();
                  },
              .advance = progress.counter()});
    // All ranks have come here: all files are whole.
    file.takePlace(files.mayReplace);
    file.syncPlace();
}

}  // namespace zqpaths::program::mpi
