#include "tools/zqpaths-mpi/input/InputPlan.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <utility>

#include "tools/zqpaths-mpi/input/DirectoryCutting.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/DirectorySource.hpp"
#include "tools/zqpaths/sources/LineInput.hpp"

namespace zqpaths::program::mpi {
namespace {

constexpr std::uint64_t kMiB = std::uint64_t{1} << 20;
constexpr std::uint64_t kSmallestPiece = 64 * kMiB;
constexpr std::uint64_t kLargestPiece = 2048 * kMiB;
constexpr std::size_t kUsualPieces = 1000;

/// x / y, up.
std::uint64_t ceilingOf(std::uint64_t dividend, std::uint64_t divisor) {
    return dividend / divisor + (dividend % divisor == 0 ? 0 : 1);
}

InputSource sourceOf(const std::string& name, const SourceOptions& options) {
    const SourceKind kind = kindOf(name, options);
    if (kind == SourceKind::kDirectory) {
        requireDirectory(name);
        return {name, kind};
    }
    if (isStandardInput(name))
        throw Failure(ExitStatus::kFailed,
                      "standard input can be read by one process alone: give the name of a file");
    return {name, kind, stampOfFile(name)};
}

/// Puts parts, which come in their order, together to pieces.
class Gathering {
public:
    explicit Gathering(InputPlan& plan) : plan_(plan) {}

    void add(SourcePart part, std::uint64_t weight) {
        const bool isNew =
            plan_.pieces.empty() || plan_.pieces.back().weight + weight > plan_.pieceSize;
        if (isNew) plan_.pieces.emplace_back();
        plan_.pieces.back().parts.push_back(std::move(part));
        plan_.pieces.back().weight += weight;
    }

private:
    InputPlan& plan_;
};

/// Ranges of the same length, but for a byte.
void addLines(std::size_t source, std::uint64_t size, std::uint64_t pieceSize,
              Gathering& gathering) {
    const std::uint64_t count = std::max<std::uint64_t>(ceilingOf(size, pieceSize), 1);
    const std::uint64_t longerCount = size % count;
    std::uint64_t begin = 0;
    for (std::uint64_t i = 0; i < count; ++i) {
        const std::uint64_t length = size / count + (i < longerCount ? 1 : 0);
        gathering.add({.source = source, .bytes = {begin, begin + length}}, length);
        begin += length;
    }
}

/// What is below a directory with all is not known: it is a piece by itself, unless there are more
/// of these than there should be pieces.
void addDirectory(std::size_t source, std::vector<DirectoryCut> cuts, std::uint64_t pieceSize,
                  Gathering& gathering) {
    const auto wholeCount = static_cast<std::uint64_t>(
        std::ranges::count_if(cuts, [](const DirectoryCut& cut) { return cut.part.isDeep; }));
    const std::uint64_t together = std::max<std::uint64_t>(ceilingOf(wholeCount, kUsualPieces), 1);
    for (DirectoryCut& cut : cuts)
        gathering.add({.source = source, .directory = std::move(cut.part)},
                      cut.textSize.value_or(std::max<std::uint64_t>(pieceSize / together, 1)));
}

}  // namespace

FileStamp stampOfFile(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) throw systemFailureAt(path, errno);
    if (!S_ISREG(status.st_mode))
        throw failureAt(path, "is no regular file: many processes cannot read parts of it");
    constexpr std::int64_t kASecond = 1'000'000'000;
    return {static_cast<std::uint64_t>(status.st_size),
            std::int64_t{status.st_mtim.tv_sec} * kASecond + status.st_mtim.tv_nsec};
}

InputPlan planInput(const SourceOptions& options, std::optional<std::uint64_t> pieceSize,
                    const std::string& set) {
    InputPlan plan;
    std::uint64_t size = 0;
    for (const std::string& name : options.directories) {
        plan.sources.push_back(sourceOf(name, options));
        size += plan.sources.back().stamp.size;
    }
    plan.pieceSize =
        pieceSize.value_or(std::clamp(size / kUsualPieces, kSmallestPiece, kLargestPiece));

    WalkOptions walk = walkOptionsOf(options);
    for (FileIdentity& file : filesOfSet(set)) walk.notTaken.push_back(std::move(file));
    Gathering gathering(plan);
    for (std::size_t i = 0; i < plan.sources.size(); ++i) {
        const InputSource& source = plan.sources[i];
        if (source.kind == SourceKind::kDirectory)
            addDirectory(i, cutDirectory(source.name, walk, kUsualPieces), plan.pieceSize,
                         gathering);
        else if (source.kind == SourceKind::kLines)
            addLines(i, source.stamp.size, plan.pieceSize, gathering);
        else
            gathering.add({.source = i}, source.stamp.size);
    }
    return plan;
}

}  // namespace zqpaths::program::mpi
