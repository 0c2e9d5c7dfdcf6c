#include "tools/zqpaths-mpi/input/PieceFolder.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

#include "tools/zqpaths-mpi/input/PlanText.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/WholeFiles.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/file/PendingFile.hpp"

namespace zqpaths::program::mpi {
namespace {

constexpr std::string_view kSetEnding = ".zqp";
constexpr std::string_view kReportEnding = ".json";
constexpr std::string_view kSecond = "2-";
constexpr int kDigits = 6;

/// What the name of a file in the folder says.
struct PieceName {
    unsigned generation;
    bool isSetFile;
};

/// Nothing for files that are none of a piece.
std::optional<PieceName> parsePieceName(std::string_view name) {
    const bool isSecond = name.starts_with(kSecond);
    if (isSecond) name.remove_prefix(kSecond.size());
    const std::size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
    const std::string_view ending = name.substr(digits);
    if (digits < kDigits || (ending != kSetEnding && ending != kReportEnding)) return std::nullopt;
    return PieceName{isSecond ? 2U : 1U, ending == kSetEnding};
}

/// The names in a folder; none if it is not there.
std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        names.push_back(entry.path().filename());
    if (error && error != std::errc::no_such_file_or_directory)
        throw systemFailureAt(folder, error.value());
    return names;
}

bool isThere(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

void removeFile(const std::string& path) {
    if (::unlink(path.c_str()) != 0 && errno != ENOENT) throw systemFailureAt(path, errno);
}

}  // namespace

void PieceFolder::make() const {
    constexpr mode_t kMode = 0777;  // less what the user's mask takes away
    if (::mkdir(path_.c_str(), kMode) == 0) return;
    const int error = errno;
    if (error != EEXIST || !std::filesystem::is_directory(path_))
        throw systemFailureAt(path_, error);
}

std::optional<std::string> PieceFolder::plan() const {
    if (!isThere(planFile())) return std::nullopt;
    const std::vector<std::uint8_t> bytes = readWholeFile(planFile());
    return std::string(bytes.begin(), bytes.end());
}

void PieceFolder::requireEmpty() const {
    if (isThere(planFile()))
        throw failureAt(path_,
                        "holds what a run that did not end has made; --resume goes on with it, "
                        "--force begins anew");
    for (const std::string& name : namesIn(path_))
        if (parsePieceName(name))
            throw failureAt(path_,
                            "holds set files of a set that is not there; --force replaces "
                            "them");
}

void PieceFolder::clear() {
    const std::optional<std::string> left = plan();
    const std::optional<PlanSummary> summary = left ? summaryOfPlan(*left) : std::nullopt;
    if (summary) {
        // What was being written has names that only those of the whole files lead to.
        generation_ = summary->generation;
        for (std::size_t piece = 0; piece < summary->pieceCount; ++piece)
            for (const std::string& file : {setFile(piece), reportFile(piece)})
                PendingFile::removeLeft(file);
    }
    removeFile(planFile());
    generation_ = generationOfSet() == 1U ? 2 : 1;
    removeFiles(1, generation_ == 1);
    removeFiles(2, generation_ == 2);
}

void PieceFolder::writePlan(const std::string& text) const {
    writeInPlace(planFile(), text);
}

bool PieceFolder::hasFilesOfSet() const {
    return generationOfSet().has_value();
}

std::string PieceFolder::setFile(std::size_t piece) const {
    return fileOf(piece, kSetEnding.data());
}

std::string PieceFolder::reportFile(std::size_t piece) const {
    return fileOf(piece, kReportEnding.data());
}

std::optional<PieceReport> PieceFolder::reportOfWhole(std::size_t piece) const {
    if (!isThere(reportFile(piece))) return std::nullopt;
    const std::vector<std::uint8_t> bytes = readWholeFile(reportFile(piece));
    std::optional<PieceReport> report =
        decodeReport({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    if (!report || report->pathCount == 0) return report;
    try {
        const PathSet set = PathSet::open(setFile(piece));
        return set.size() == report->pathCount ? report : std::nullopt;
    } catch (const Error&) {
        return std::nullopt;  // it was not made, or is damaged: it is made again
    }
}

void PieceFolder::keepSetFilesAlone() const {
    removeFile(planFile());
    removeFiles(generation_, false);
    removeFiles(generation_ == 1 ? 2 : 1, true);
}

void PieceFolder::remove() {
    clear();
    removeFiles(generation_, true);
    // What is not ours stays, and so does the folder then.
    if (::rmdir(path_.c_str()) != 0 && errno != ENOTEMPTY && errno != EEXIST)
        throw systemFailureAt(path_, errno);
}

std::string PieceFolder::fileOf(std::size_t piece, const char* ending) const {
    std::string number = std::to_string(piece + 1);
    number.insert(0, kDigits - std::min<std::size_t>(kDigits, number.size()), '0');
    return path_ + '/' + (generation_ == 2 ? std::string(kSecond) : "") + number + ending;
}

/// That of the set's files in this folder, if it has any.
std::optional<unsigned> PieceFolder::generationOfSet() const {
    try {
        const PathSet set = PathSet::open(set_);
        for (std::size_t i = 0; i < set.fileCount(); ++i) {
            const std::filesystem::path file = set.fileName(i);
            const std::optional<PieceName> name = parsePieceName(file.filename().string());
            std::error_code error;
            if (name && std::filesystem::equivalent(file.parent_path(), path_, error))
                return name->generation;
        }
    } catch (const Error& error) {
        // If it is so damaged that it names no files, nobody can need them.
        const bool isNone = error.kind() == ErrorKind::kNotFound ||
                            error.kind() == ErrorKind::kNotASet ||
                            error.kind() == ErrorKind::kDamaged;
        if (!isNone) throw;
    }
    return std::nullopt;
}

void PieceFolder::removeFiles(unsigned generation, bool setFiles) const {
    for (const std::string& name : namesIn(path_)) {
        const std::optional<PieceName> piece = parsePieceName(name);
        if (piece && piece->generation == generation && (setFiles || !piece->isSetFile))
            removeFile(path_ + '/' + name);
    }
}

}  // namespace zqpaths::program::mpi
