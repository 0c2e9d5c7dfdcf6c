// What files take that were made to harm who reads them:  hostile_files [NAME]
//
// Each of tests/zqpaths/hostile is read as a user reads a file of somebody else, in a process of
// its own, and so is an honest one of its size: of as many bytes, or of as much text as the file
// says it has, whichever is more. The table has the most that the heap held and how many times as
// long it took. The status is 1 if one takes more memory than kMostMemory or more time than
// kMostTimes.

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/support/SetFiles.hpp"
#include "tests/zqpaths/hostile/HostileFiles.hpp"
#include "tests/zqpaths/hostile/Reading.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"
#include "zqpaths/set/Pieces.hpp"

namespace {

using namespace hostile;
using zqpaths::PathSetWriter;

constexpr double kMostTimes = 20;
constexpr unsigned kMostSeconds = 30;
constexpr int kRuns = 3;
// What starting threads and writing files takes; below it nothing can be told apart.
constexpr double kLeastSeconds = 0.005;

/// The quickest of some runs, with the most memory of any.
Reading readSome(const std::string& file, Kind kind) {
    Reading best = readAlone(file, kind, kMostSeconds);
    for (int run = 1; run < kRuns && best.seconds < 1; ++run) {
        Reading next = readAlone(file, kind, kMostSeconds);
        next.peakBytes = std::max(best.peakBytes, next.peakBytes);
        best.peakBytes = next.peakBytes;
        if (next.seconds < best.seconds) best = next;
    }
    return best;
}

/// Of a file, and of the tree string that belongs to it.
std::uint64_t sizeOf(const std::string& file) {
    const std::string beside = treeStringBeside(file);
    return std::filesystem::file_size(file) +
           (std::filesystem::exists(beside) ? std::filesystem::file_size(beside) : 0);
}

void writePaths(const std::string& file, PathSetWriter::Form form, int first, int count) {
    PathSetWriter writer(file, PathSetWriter::Mode::kReplace, form);
    for (int i = first; i < first + count; ++i)
        writer.add("folder/part-" + std::to_string(i / 100) + "/image-" + std::to_string(i) +
                   ".jpeg");
    writer.commit();
}

void writePieces(const std::string& file, const zqpaths::SavedPieces& pieces) {
    const auto write = [](const std::string& name, const std::vector<std::uint8_t>& bytes) {
        zqpaths::writeContent(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    };
    write(file, pieces.pathTree);
    write(treeStringBeside(file), pieces.treeString);
}

void writeSetOfSets(const std::string& file) {
    constexpr int kSets = 2000;
    zqpaths::SetManifestWriter manifest(file);
    for (int i = 0; i < kSets; ++i) {
        const std::string set = file + "." + std::to_string(i);
        writePaths(set, PathSetWriter::Form::kImage, 10 * i, 10);
        manifest.addSet(set);
    }
    manifest.commit();
}

/// An honest file of its kind, of a few hundred kilobytes.
void writeHonest(const std::string& file, Kind kind) {
    constexpr int kPaths = 60'000;
    constexpr int kPackedPaths = 200'000;
    if (kind == Kind::kSetOfSets) return writeSetOfSets(file);
    if (kind == Kind::kPacked)
        return writePaths(file, PathSetWriter::Form::kPacked, 0, kPackedPaths);
    writePaths(file, PathSetWriter::Form::kImage, 0, kind == Kind::kImage ? kPaths : kPackedPaths);
    if (kind == Kind::kPieces)
        writePieces(file, zqpaths::exportPieces(zqpaths::PathSet::open(file)));
}

const char* nameOf(Kind kind) {
    constexpr std::array kNames{"an image", "packed", "in pieces", "a set of sets"};
    return kNames.at(static_cast<std::size_t>(kind));
}

/// What an honest file of a kind takes, and what it has.
struct Honest {
    double bytes;
    double text;
    double seconds;
};

Honest honest(Kind kind, const std::string& folder) {
    std::filesystem::create_directory(folder);
    const std::string file = folder + "/honest";
    writeHonest(file, kind);
    const Reading reading = readSome(file, kind);
    if (reading.failure.front() != 0 || reading.refused > 0)
        throw std::runtime_error("an honest file is refused");
    const Honest honest{static_cast<double>(sizeOf(file)), static_cast<double>(reading.statedText),
                        reading.seconds};
    std::filesystem::remove_all(folder);
    std::printf("honest, %s: %.0f kB, %.1f MB of text, %.1f MiB, %.3f s\n", nameOf(kind),
                honest.bytes / 1e3, honest.text / 1e6,
                static_cast<double>(reading.peakBytes) / (1 << 20), honest.seconds);
    return honest;
}

/// Prints a row; false if the file takes more than it may.
bool measure(const HostileFile& hostile, const Honest& honest, const std::string& folder) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directory(folder);
    const std::string file = folder + "/s.zqp";
    hostile.write(file);
    const std::uint64_t size = sizeOf(file);
    const Reading reading = readSome(file, hostile.kind);
    const double bytes = static_cast<double>(size) / honest.bytes;
    const double text =
        honest.text == 0 ? 0 : static_cast<double>(reading.statedText) / honest.text;
    const double expected = std::max(std::max(bytes, text) * honest.seconds, kLeastSeconds);
    const double times = reading.seconds / expected;
    const bool isWithin =
        reading.failure.front() == 0 && times <= kMostTimes && reading.peakBytes <= kMostMemory;
    std::printf("| %s | %s | %.0f | %.1f | %llu | %llu | %.1f | %.3f | %.1f | %s | %s%s |\n",
                hostile.name.c_str(), hostile.attacks.c_str(), static_cast<double>(size) / 1e3,
                static_cast<double>(reading.statedText) / 1e6,
                static_cast<unsigned long long>(reading.answered),
                static_cast<unsigned long long>(reading.refused),
                static_cast<double>(reading.peakBytes) / (1 << 20), reading.seconds, times,
                reading.slowest.data(),
                reading.failure.front() != 0 ? reading.failure.data() : reading.refusal.data(),
                isWithin ? "" : " **beyond**");
    static_cast<void>(std::fflush(stdout));
    return isWithin;
}

}  // namespace

int main(int argumentCount, char** arguments) try {
    const std::string_view only = argumentCount > 1 ? arguments[1] : "";
    std::string folder = (std::filesystem::temp_directory_path() / "hostile-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no folder");
    std::map<Kind, Honest> honestOf;
    for (const Kind kind : {Kind::kImage, Kind::kPacked, Kind::kPieces, Kind::kSetOfSets})
        honestOf.emplace(kind, honest(kind, folder + "/honest"));
    std::puts(
        "\n| file | attacks by | kB | MB of text | answers | refusals | MiB | s | times | "
        "slowest | first refusal |\n|---|---|---|---|---|---|---|---|---|---|---|");
    std::size_t beyond = 0;
    for (const HostileFile& hostile : hostileFiles())
        if (only.empty() || hostile.name.find(only) != std::string::npos)
            beyond += measure(hostile, honestOf.at(hostile.kind), folder + "/hostile") ? 0 : 1;
    std::filesystem::remove_all(folder);
    std::printf("\n%zu take more than %llu MiB or %.0f times as long\n", beyond,
                static_cast<unsigned long long>(kMostMemory >> 20), kMostTimes);
    return beyond == 0 ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
