// Holds all paths of a directory, or of a list, in a path set, says what that takes, saves and
// loads the set and compares every path:
//
//     index_directory [DIRECTORY|LIST]      (/usr if nothing is given)
//
// Exit status: 0 if all paths are equal, 1 if one is not, 2 if some of the input could not be read.

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iomanip>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "examples/FetchedPaths.hpp"
#include "examples/FolderEntries.hpp"
#include "examples/PathInput.hpp"
#include "tools/zqpaths/Figures.hpp"
#include "tools/zqpaths/PrintablePath.hpp"

namespace {

using compressedpaths::HuffmanPathTree;
using examples::FetchedPaths;
using examples::PathList;
using zqpaths::fixedPoint;
using zqpaths::groupDigits;
using zqpaths::printablePath;

constexpr int kDifferent = 1;
constexpr int kUnreadable = 2;
constexpr int kLabelWidth = 28;
constexpr int kValueWidth = 16;
constexpr std::size_t kRandomAccesses = 20'000;

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void printRow(std::string_view label, std::string_view value, std::string_view remark = {}) {
    std::cout << "  " << std::left << std::setw(kLabelWidth) << label << std::right
              << std::setw(kValueWidth) << value;
    if (!remark.empty()) std::cout << ' ' << remark;
    std::cout << std::endl;  // seen at once: a phase may take long
}

std::string aPath(std::size_t bytes, std::size_t pathCount) {
    return fixedPoint(static_cast<double>(bytes) / static_cast<double>(pathCount), 1) + " a path";
}

/// Prints a size, also for each path and beside that of the text.
void printSize(std::string_view label, std::size_t bytes, const PathList& paths) {
    const double share = static_cast<double>(bytes) / static_cast<double>(paths.byteSize());
    printRow(label, groupDigits(bytes),
             "bytes, " + aPath(bytes, paths.size()) + ", " + fixedPoint(100 * share, 1) +
                 " % of the text");
}

void printSeconds(std::string_view label, double seconds) {
    printRow(label, fixedPoint(seconds, 3), "s");
}

/// Runs a phase and prints how long it took. Returns what the phase returns.
template <class Phase>
auto timed(std::string_view label, const Phase& phase) {
    const Clock::time_point start = Clock::now();
    auto result = phase();
    printSeconds(label, secondsSince(start));
    return result;
}

/// Bytes that this process has from the heap, in all its arenas.
std::size_t heapBytes() {
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

/// The mean length of a code word, each character counted as often as it is coded.
double bitsPerCharacter(const HuffmanPathTree& set) {
    const std::vector<double> frequencies = set.getFrequencies();
    double characters = 0;
    double bits = 0;
    std::size_t leaf = 0;
    std::vector<unsigned> openDepths{0};  // of the nodes that the shape is still to tell
    for (const bool isLeaf : set.getBoolTree()) {
        const unsigned depth = openDepths.back();
        openDepths.pop_back();
        if (isLeaf) {
            characters += frequencies[leaf];
            bits += frequencies[leaf++] * depth;
        } else {
            openDepths.insert(openDepths.end(), 2, depth + 1);
        }
    }
    return bits / characters;
}

std::unique_ptr<HuffmanPathTree> makeSet(const examples::CharacterFrequencies& found,
                                         const PathList& paths) {
    auto set = std::make_unique<HuffmanPathTree>();
    set->deflateHuffman(found.frequencies.data(), found.characters);
    examples::Batch batch;
    for (std::size_t first = 0; first < paths.size(); first += examples::kBatchPaths) {
        batch.fill(paths, first);
        set->generateCodeAsyncAndAddPaths(batch.folders, batch.files);
    }
    return set;
}

struct SavedSet {
    std::vector<std::uint8_t> bytes;
    std::u16string characters;

    std::size_t byteSize() const { return bytes.size() + characters.size() * sizeof(char16_t); }
};

SavedSet save(HuffmanPathTree& set) {
    SavedSet saved;
    set.serialize(saved.bytes, true);
    saved.characters = set.getTreeString();
    return saved;
}

std::unique_ptr<HuffmanPathTree> load(SavedSet& saved) {
    auto set = std::make_unique<HuffmanPathTree>();
    set->deserialize(saved.bytes, true);
    set->inflateHuffman(saved.characters);
    return set;
}

void printRandomAccess(HuffmanPathTree& set, std::size_t pathCount) {
    // NOLINTNEXTLINE(cert-msc*): the same numbers in each run make runs comparable
    std::mt19937_64 random(1);
    std::uniform_int_distribution<std::size_t> anyNumber(1, pathCount);
    std::vector<std::size_t> numbers(kRandomAccesses);
    std::generate(numbers.begin(), numbers.end(), [&] { return anyNumber(random); });

    FetchedPaths fetched(set);
    std::size_t bytes = 0;
    const Clock::time_point start = Clock::now();
    for (const std::size_t number : numbers) bytes += fetched.at(number).size();
    const double each = secondsSince(start) / static_cast<double>(numbers.size());
    const double meanBytes = static_cast<double>(bytes) / static_cast<double>(numbers.size());
    printRow("single random access", groupDigits(static_cast<std::size_t>(each * 1e9)),
             "ns for a path of " + fixedPoint(meanBytes, 1) + " bytes");
}

void printSamples(HuffmanPathTree& set, std::size_t pathCount) {
    std::cout << "\nsome paths by number\n";
    FetchedPaths fetched(set);
    for (const std::size_t number :
         std::set<std::size_t>{1, pathCount / 4 + 1, pathCount / 2 + 1, pathCount}) {
        std::cout << std::setw(13) << groupDigits(number) << "  "
                  << printablePath(fetched.at(number)) << '\n';
    }
}

/// True if the set gives back all paths by number; otherwise says which one differs.
bool givesAllByNumber(HuffmanPathTree& set, const PathList& paths) {
    const std::optional<std::size_t> number = examples::firstDifference(set, paths);
    if (!number) return true;
    std::cerr << "path " << groupDigits(*number) << " is different:\n  added    "
              << printablePath(paths[*number - 1]) << "\n  fetched  "
              << printablePath(FetchedPaths(set).at(*number)) << '\n';
    return false;
}

/// True if the walk through the set gives as many paths as it should; otherwise says how many.
bool givesAllByWalk(HuffmanPathTree& set, std::size_t expected) {
    const std::size_t found = examples::countByWalk(set);
    if (found == expected) return true;
    std::cerr << "the walk gives " << groupDigits(found) << " paths instead of "
              << groupDigits(expected) << '\n';
    return false;
}

void printInput(const examples::PathInput& input, const examples::CharacterFrequencies& found,
                const examples::FolderCensus& census) {
    const std::size_t pathCount = input.paths.size();
    std::cout << "\ninput\n";
    printRow("paths", groupDigits(pathCount));
    printRow("text", groupDigits(input.paths.byteSize()),
             "bytes, " + aPath(input.paths.byteSize(), pathCount));
    printRow("folders", groupDigits(census.distinctCount),
             "in " + groupDigits(found.entryCount) + " entries");
    if (census.becameFolderCount > 0) {
        printRow("paths that became folders", groupDigits(census.becameFolderCount),
                 "which the walk does not give");
    }
    if (input.unreadableCount > 0)
        printRow("unreadable, skipped", groupDigits(input.unreadableCount));
    printRow("distinct characters", groupDigits(found.characters.size()));
}

int run(const std::string& source) {
    const Clock::time_point start = Clock::now();
    const examples::PathInput input = examples::readPaths(source);
    const PathList& paths = input.paths;
    std::cout << printablePath(source) << "\n\nseconds\n";
    printSeconds("list", secondsSince(start));
    const auto census = timed("count folders", [&] { return examples::countFolders(paths); });
    const auto found = timed("count characters", [&] { return examples::countCharacters(paths); });
    const std::size_t expectedByWalk = paths.size() - census.becameFolderCount;

    const std::size_t heapBefore = heapBytes();
    auto set = timed("add", [&] { return makeSet(found, paths); });
    const std::size_t heapOfSet = heapBytes() - heapBefore;
    const double codeLength = bitsPerCharacter(*set);
    bool isEqual = timed("fetch all by number", [&] { return givesAllByNumber(*set, paths); });
    isEqual &= timed("walk", [&] { return givesAllByWalk(*set, expectedByWalk); });
    SavedSet saved = timed("save", [&] { return save(*set); });
    set.reset();  // what is asked from here on is answered by the loaded set
    set = timed("load", [&] { return load(saved); });
    isEqual &= timed("compare what was loaded", [&] {
        return givesAllByNumber(*set, paths) && givesAllByWalk(*set, expectedByWalk);
    });

    printInput(input, found, census);
    std::cout << "\npath set\n";
    printRow("code", fixedPoint(codeLength, 2), "bits a character");
    printSize("heap after adding", heapOfSet, paths);
    printSize("saved", saved.byteSize(), paths);
    printRandomAccess(*set, paths.size());
    printSamples(*set, paths.size());
    if (!isEqual) return kDifferent;
    std::cout << "\nall " << groupDigits(paths.size()) << " paths are equal\n";
    return input.unreadableCount == 0 ? EXIT_SUCCESS : kUnreadable;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount > 2) {
        std::cerr << "usage: index_directory [DIRECTORY|LIST]\n";
        return kUnreadable;
    }
    try {
        return run(argumentCount == 2 ? arguments[1] : "/usr");
    } catch (const examples::InputError& error) {
        std::cerr << error.what() << '\n';
        return kUnreadable;
    } catch (const std::exception& error) {
        std::cerr << "index_directory: " << error.what() << '\n';
        return kDifferent;
    }
}
