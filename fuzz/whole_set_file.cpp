// A whole set file, opened as programs open it. What is wrong is refused with Error. What opens and
// is whole is a set: all ways to its paths give the same ones, and so does a set that they are
// copied to.
//
// Inputs are changed part by part, and all sums made right again, so that the changes reach those
// who read the parts.

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "fuzz/Mutation.hpp"
#include "fuzz/Require.hpp"
#include "fuzz/TemporaryFolder.hpp"
#include "tests/support/ImageSums.hpp"
#include "tests/support/SetFileSums.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/search/PathScope.hpp"
#include "zqpaths/update/SetScans.hpp"

using namespace zqpaths;
using fuzzing::Random;
using fuzzing::require;
using fuzzing::succeeds;

namespace {

/// Paths that are looked at one by one.
constexpr std::uint64_t kMaxPaths = 400;

using Numbered = std::vector<std::pair<std::uint64_t, std::string>>;

const fuzzing::TemporaryFolder& folder() {
    static const fuzzing::TemporaryFolder made;
    return made;
}

// --- Changing inputs.

/// The bytes that an extent has in a file that holds it.
template <class Entry>
std::span<std::byte> partOf(std::span<std::byte> file, const Entry& entry) {
    if (entry.offset > file.size() || entry.size > file.size() - entry.offset) return {};
    return file.subspan(entry.offset, entry.size);
}

/// Has the directory tell the sums of what lies in the file now, and makes those of images right.
void putPartsRight(std::span<std::byte> file, Directory& directory) {
    for (SegmentEntry& segment : directory.segments) {
        const auto part = partOf(file, segment);
        if (segment.form == SegmentForm::kImage) compressedpaths::putImageSumsRight(part);
        segment.sum = sumOf(part);
    }
    for (std::optional<BlockEntry>* const block : {&directory.gone, &directory.scans})
        if (*block) (*block)->sum = sumOf(partOf(file, **block));
}

template <class Entry>
void mutateEntry(Entry& entry, Random& random) {
    fuzzing::mutateInPlace({reinterpret_cast<std::uint8_t*>(&entry), sizeof entry}, random);
}

/// Changes one of the parts that a directory names, or what it says of one.
void mutatePart(std::span<std::byte> file, Directory& directory, Random& random) {
    const auto change = [&](auto& entry) {
        if (fuzzing::below(5, random) == 0) return mutateEntry(entry, random);
        const auto part = partOf(file, entry);
        fuzzing::mutateInPlace({reinterpret_cast<std::uint8_t*>(part.data()), part.size()}, random);
    };
    const std::size_t chosen = fuzzing::below(directory.segments.size() + 2, random);
    if (chosen < directory.segments.size()) return change(directory.segments[chosen]);
    std::optional<BlockEntry>& block =
        chosen == directory.segments.size() ? directory.gone : directory.scans;
    if (block) change(*block);
}

/// Changes parts of a file that can be opened. The directory keeps its place: its fields have fixed
/// sizes. Throws Error for other files.
void mutateCommitted(std::span<std::byte> file, Random& random) {
    CommittedState state = committedState(file.first(std::min(file.size(), kPageSize)), file);
    for (std::size_t left = fuzzing::below(4, random) == 0 ? 3 : 1; left > 0; --left)
        mutatePart(file, state.directory, random);
    putPartsRight(file, state.directory);
    const std::vector<std::byte> encoded = encodeDirectory(state.directory);
    if (encoded.size() != state.superblock.directorySize) return;
    std::ranges::copy(encoded, file.subspan(state.superblock.directoryOffset).begin());
}

// --- What is asked of a set.

void requireSameByNumber(const PathSet& set, const Numbered& paths) {
    std::vector<std::uint64_t> numbers;
    for (auto path = paths.rbegin(); path != paths.rend(); ++path) {
        require(set.path(path->first) == path->second, "a number gives the path of the visit");
        numbers.push_back(path->first);
    }
    auto expected = paths.rbegin();
    set.paths(numbers, [&](std::uint64_t number, std::string_view path) {
        require(number == expected->first && path == expected->second,
                "numbers give their paths in order");
        return ++expected != paths.rend();
    });
    require(expected == paths.rend(), "each number gives a path");
    auto next = paths.begin();
    for (const std::string_view path : set)
        require(next != paths.end() && path == (next++)->second, "an iterator gives the paths");
    require(next == paths.end(), "an iterator gives all paths");
}

void requireFound(const PathSet& set, const Numbered& paths) {
    std::map<std::string_view, std::uint64_t> lowest;
    for (const auto& [number, path] : paths) lowest.emplace(path, number);
    for (const auto& [path, number] : lowest)
        require(set.numberOf(path) == number, "a path has its lowest number");
    set.walk([&](std::uint64_t /*step*/, std::string_view path) {
        require(lowest.contains(path), "a walk gives paths of the set");
        return true;
    });
}

/// What a visit gives is what is in all paths by this rule.
template <class Visit, class Rule>
void requireVisits(const Numbered& paths, Visit visit, Rule rule, const char* law) {
    Numbered visited;
    visit([&](std::uint64_t number, std::string_view path) {
        visited.emplace_back(number, path);
        return visited.size() <= kMaxPaths;
    });
    Numbered expected;
    std::ranges::copy_if(paths, std::back_inserter(expected),
                         [&](const auto& path) { return rule(path.second); });
    require(visited == expected, law);
}

void requireSearched(const PathSet& set, const Numbered& paths) {
    const std::string& path = paths[paths.size() / 2].second;
    const std::string text = path.substr(path.size() / 2);
    requireVisits(
        paths, [&](auto visit) { set.find(Pattern::text(text), visit); },
        [&](const std::string& each) { return each.find(text) != std::string::npos; },
        "a text is found where it is");
    const std::string above = path.substr(0, path.rfind('/', path.size() / 2) + 1);
    const PathScope scope(above);
    requireVisits(
        paths, [&](auto visit) { set.under(above, visit); },
        [&](const std::string& each) { return scope.contains(each); },
        "a folder has the paths below it");
}

void requireCounted(const PathSet& set) {
    require(set.goneCount() + set.presentCount() == set.size(), "a path is there or gone");
    std::uint64_t gone = 0;
    std::uint64_t present = 0;
    for (std::uint64_t number = 1; number <= set.size(); ++number) {
        if (set.isGone(number))
            require(set.goneNumber(gone++) == number, "the gone paths are in order");
        else
            require(set.presentNumber(present++) == number, "the present paths are in order");
    }
    require(gone == set.goneCount(), "the gone paths are counted");
}

Numbered pathsOf(const PathSet& set) {
    Numbered paths;
    set.forEach([&](std::uint64_t number, std::string_view path) {
        require(number == paths.size() + 1, "numbers ascend by one");
        paths.emplace_back(number, path);
        return true;
    });
    require(paths.size() == set.size(), "a visit gives all paths");
    return paths;
}

/// A set with all paths of `set`, and then one more.
void requireCopied(const PathSet& set, const Numbered& paths, PathSetWriter::Form form) {
    const std::string file = folder().pathOf("copy.zqp");
    PathSetWriter writer(file, PathSetWriter::Mode::kReplace, form);
    if (form == PathSetWriter::Form::kImage)
        writer.addSet(set);
    else
        for (const auto& [number, path] : paths) writer.add(path);
    writer.add("one/more");
    writer.commit();
    const PathSet copy = PathSet::open(file);
    Numbered copied = pathsOf(copy);
    require(copied.back().second == "one/more", "a path is added at the end");
    copied.pop_back();
    require(copied == paths, "a copy has the same paths");
    require(copy.verify().empty(), "a copy is whole");
    if (form != PathSetWriter::Form::kImage) return;
    for (std::uint64_t number = 1; number <= set.size(); ++number)
        require(copy.isGone(number) == set.isGone(number), "a copy has the same gone paths");
}

/// Refused are files with sections that a writer may not copy.
void requireGrows(const std::string& file, Numbered paths) {
    const bool isTaken = succeeds<Error>([&] {
        PathSetWriter writer(file, PathSetWriter::Mode::kAppend);
        writer.add("one/more");
        writer.commit();
    });
    if (isTaken) paths.emplace_back(paths.size() + 1, "one/more");
    const PathSet set = PathSet::open(file);
    require(pathsOf(set) == paths, "a set that grows keeps its paths");
    require(set.verify().empty(), "a set that grows is whole");
}

void askWhole(const PathSet& set, const std::string& file) {
    scansOf(set);
    requireCounted(set);
    const Numbered paths = pathsOf(set);
    requireSameByNumber(set, paths);
    requireFound(set, paths);
    if (!paths.empty()) requireSearched(set, paths);
    for (const auto form : {PathSetWriter::Form::kImage, PathSetWriter::Form::kPacked})
        requireCopied(set, paths, form);
    requireGrows(file, paths);
}

/// All may be refused; what is not ends.
void askDamaged(const PathSet& set) {
    std::uint64_t left = 0;
    const auto visit = [&](std::uint64_t /*number*/, std::string_view /*path*/) {
        return --left > 0;
    };
    const auto ask = [&](auto question) {
        left = kMaxPaths;
        succeeds<Error>(question);
    };
    for (std::uint64_t number = 1; number <= std::min<std::uint64_t>(set.size(), 20); ++number) {
        std::string path;
        ask([&] { path = set.path(number); });
        ask([&] { set.numberOf(path); });
        ask([&] { set.isGone(number); });
    }
    ask([&] { set.path(set.size()); });
    ask([&] { set.forEach(visit); });
    ask([&] { set.forEach(std::min(set.size(), kMaxPaths), 1, visit); });
    ask([&] { set.walk(visit); });
    for (const char* const name : {"", "/", "a", "usr/lib"}) {
        ask([&] { set.under(name, visit); });
        ask([&] { set.numberOf(name); });
        ask([&] { set.find(Pattern::text(name), visit); });
    }
    ask([&] { set.count(Pattern::glob("*a*")); });
    ask([&] { set.presentNumber(set.presentCount() / 2); });
    ask([&] { scansOf(set); });
    ask([&] { set.segments(); });
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    Random random(seed);
    const std::span<std::byte> file = std::as_writable_bytes(std::span(data, size));
    const bool isPlain = fuzzing::below(32, random) == 0;
    if (!isPlain && succeeds<Error>([&] { mutateCommitted(file, random); })) {
        putSumsRight(file);
        return size;
    }
    const std::size_t changed = LLVMFuzzerMutate(data, size, maxSize);
    putSumsRight(std::as_writable_bytes(std::span(data, changed)));
    return changed;
}

/// The first of two files as it is: what is half of one and half of the other cannot be opened.
extern "C" std::size_t LLVMFuzzerCustomCrossOver(const std::uint8_t* data, std::size_t size,
                                                 const std::uint8_t* /*other*/,
                                                 std::size_t /*otherSize*/, std::uint8_t* out,
                                                 std::size_t maxSize, unsigned /*seed*/) {
    const std::size_t copied = std::min(size, maxSize);
    std::copy_n(data, copied, out);
    return copied;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string file = folder().write("set.zqp", std::as_bytes(std::span(data, size)));
    std::optional<PathSet> set;
    if (!succeeds<Error>([&] { set = PathSet::open(file); })) return 0;
    if (set->isSetOfSets()) return 0;  // it names files of the system
    if (!set->verify().empty())
        askDamaged(*set);
    else if (set->size() <= kMaxPaths)
        askWhole(*set, file);
    return 0;
}
