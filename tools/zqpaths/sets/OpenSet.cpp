#include "tools/zqpaths/sets/OpenSet.hpp"

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

/// "12 paths are missing, numbers 4 to 15"; where others stand between them "among the numbers".
std::string lineAbout(const MissingFile& file) {
    const auto [first, last] = file.numbers;
    if (file.count == 1) return "1 path is missing, number " + groupDigits(first);
    return groupDigits(file.count) + " paths are missing, " +
           (file.count == last - first + 1 ? "numbers " : "among the numbers ") +
           groupDigits(first) + " to " + groupDigits(last);
}

}  // namespace

std::vector<MissingFile> missingFilesOf(const PathSet& set) {
    std::vector<MissingFile> files;
    std::unordered_map<std::size_t, std::size_t> places;  // in `files`
    for (const PathSet::Missing& missing : set.missing()) {
        const auto [place, isNew] = places.try_emplace(missing.file, files.size());
        if (isNew) files.push_back({&missing.reason, {missing.firstNumber, missing.lastNumber}});
        MissingFile& file = files[place->second];
        file.numbers.last = missing.lastNumber;
        file.count += missing.lastNumber - missing.firstNumber + 1;
    }
    return files;
}

std::uint64_t missingPathCountOf(const PathSet& set) {
    std::uint64_t count = 0;
    for (const PathSet::Missing& missing : set.missing())
        count += missing.lastNumber - missing.firstNumber + 1;
    return count;
}

PathSet openSet(const std::string& file, bool isPartial) {
    nameWhatIsRead(printablePath(file));
    if (!isPartial) return PathSet::open(file);
    PathSet set = PathSet::openPartial(file);
    for (const MissingFile& missing : missingFilesOf(set))
        tell(printableText(missing.reason->what()) + "; " + lineAbout(missing));
    return set;
}

void requireSetFile(const PathSet& set, const std::string& refusal) {
    if (set.isSetOfSets()) throw failureAt(set.file(), "is a set of sets, which " + refusal);
}

}  // namespace zqpaths::program
