// What a set of sets of 10^11 paths costs before any path is read:  many_files [ROWS...]
//
// Makes manifests of made-up counts, of so many rows each, every one with a set file of its own
// that is not there. Opening reads the manifest alone; the numbers of ranks and of shuffled readers
// are computed, and each is led to the part that has it. Tells seconds and megabytes.

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "zqpaths/choosing/Share.hpp"
#include "zqpaths/manifest/SetManifest.hpp"
#include "zqpaths/set/OpenedSet.hpp"

namespace {

constexpr std::uint64_t kPaths = 100'000'000'000;
constexpr std::uint64_t kRanks = 64;
constexpr std::uint64_t kShuffled = 10'000'000;  // numbers of one reader that are looked at
constexpr std::uint64_t kPathsASegment = 1'000'000;

/// Parts of chance sizes, from half to one and a half times the average.
zqpaths::SetManifest madeManifest(std::uint64_t rowCount) {
    std::mt19937_64 random(rowCount);
    zqpaths::SetManifest manifest;
    std::uint64_t left = kPaths;
    for (std::uint64_t row = 0; row < rowCount; ++row) {
        const std::uint64_t average = left / (rowCount - row);
        const std::uint64_t count =
            row + 1 == rowCount ? left : average / 2 + random() % (average + 1);
        manifest.files.push_back({"all.zqs.d/" + std::to_string(row) + ".zqp", random()});
        manifest.rows.push_back({row, 0, count / kPathsASegment + 1, count, 0});
        left -= count;
    }
    return manifest;
}

/// Megabytes of the process that are resident.
double residentMegabytes() {
    std::ifstream status("/proc/self/statm");
    std::uint64_t pages = 0;
    status >> pages >> pages;
    return static_cast<double>(pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE))) / 1e6;
}

/// Seconds that `work()` takes.
template <class Work>
double secondsOf(Work work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

[[noreturn]] void fail(const char* what) {
    std::cerr << "many_files: " << what << '\n';
    std::exit(1);
}

/// Every number is in a part, and every rank gets its share of neighbouring numbers.
void split(const zqpaths::SetParts& parts) {
    std::uint64_t after = 1;
    for (std::uint64_t rank = 0; rank < kRanks; ++rank) {
        const std::uint64_t last = kPaths / kRanks * (rank + 1);
        for (const std::uint64_t number : {after, last}) {
            const zqpaths::SetPart& part = parts[parts.ofNumber(number)];
            if (number < part.firstNumber || number > part.lastNumber()) fail("a number is lost");
        }
        after = last + 1;
    }
    if (after != kPaths + 1) fail("the ranks do not have all numbers");
}

/// Looks at numbers of a reader of a shuffled set; returns how many parts they are in.
std::size_t shuffle(const zqpaths::SetParts& parts) {
    const zqpaths::ShuffledShare share(kPaths, 7, kRanks, 1);
    std::vector<bool> isMet(parts.count());
    for (std::uint64_t place = 0; place < kShuffled; ++place) {
        const std::uint64_t number = share[place];
        const std::size_t part = parts.ofNumber(number);
        if (number < parts[part].firstNumber || number > parts[part].lastNumber())
            fail("a number is lost");
        isMet[part] = true;
    }
    return static_cast<std::size_t>(std::ranges::count(isMet, true));
}

void measure(std::uint64_t rowCount, const std::string& file) {
    std::string text = zqpaths::encodeManifest(madeManifest(rowCount));
    const double size = static_cast<double>(text.size()) / 1e6;
    std::ofstream(file, std::ios::binary) << text;
    text = {};
    const double before = residentMegabytes();
    std::shared_ptr<const zqpaths::OpenedSet> set;
    const double opening = secondsOf([&] { set = zqpaths::OpenedSet::open(file); });
    if (set->size() != kPaths) fail("paths are lost");
    const double memory = residentMegabytes() - before;
    const double splitting = secondsOf([&] { split(set->parts()); });
    std::size_t metParts = 0;
    const double shuffling = secondsOf([&] { metParts = shuffle(set->parts()); });
    std::printf("%9llu %9.1f %9.3f %9.0f %12.1f %13.0f %10zu\n",
                static_cast<unsigned long long>(rowCount), size, opening, memory,
                splitting * 1e6 / kRanks, shuffling * 1e9 / kShuffled, metParts);
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::uint64_t> rowCounts;
    for (int i = 1; i < argc; ++i) rowCounts.push_back(std::strtoull(argv[i], nullptr, 10));
    if (rowCounts.empty()) rowCounts = {1'000, 25'000, 1'000'000};
    std::string folder = std::filesystem::temp_directory_path() / "zq-XXXXXX";
    if (::mkdtemp(folder.data()) == nullptr) fail("no folder can be made");
    std::puts(
        "     rows        MB    open, s   its MB  split, us/rank  shuffle, ns/path  parts met");
    for (const std::uint64_t rowCount : rowCounts) measure(rowCount, folder + "/all.zqs");
    std::filesystem::remove_all(folder);
}
