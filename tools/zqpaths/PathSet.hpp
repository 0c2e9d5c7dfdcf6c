#pragma once
// PathSet is a set of paths as the program uses it: bytes in, bytes out. Behind it is an object of
// the class that libzqcompressedpaths registers with the host.
//
//     CharacterCounts characters;
//     characters.count(path);  // all that will be added
//     PathSet set(characters);
//     PathBatch batch;
//     batch.append(path);      // until it is full
//     set.add(batch);
//     set.get(1, set.size(), [](std::uint64_t number, std::string_view path) { ... });
//
// Paths have numbers from 1 on, in the order of adding. A path is any bytes but NUL, at least one.
//
// Threads: a set belongs to one thread at a time.

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/runtime/Session.hpp"
#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {

class CharacterCounts;
class PathBatch;

inline constexpr const char* kTreeStringField = "StringTree";
inline constexpr const char* kPathTreeField = "PathTree";
inline constexpr const char* kFrequenciesField = "Frequencies";  // ours; the class does not read it

/// Takes a path and its number; the view is valid during the call.
using NumberedPathVisitor = std::function<void(std::uint64_t number, std::string_view path)>;
using PathBytesVisitor = std::function<void(std::string_view path)>;

/// Takes a folder, with the separator at its end, and the names of files in it.
using GroupVisitor =
    std::function<void(std::string_view folder, std::span<const std::string> fileNames)>;

class PathSet {
public:
    /// How many paths are had from the class at once; who wants more pieces may have as many each.
    static constexpr std::size_t kPathsACall = 10'000;

    /// An empty set that can hold paths of these characters.
    explicit PathSet(const CharacterCounts& characters);

    /// The set of a structure as fields() makes it, which is moved in. `name` is what messages call
    /// it. Throws Failure kDamaged if there is none in it.
    static PathSet restored(korvex::Array fields, const std::string& name);

    std::uint64_t size() const noexcept { return size_; }

    /// Adds the paths and leaves the batch empty. Throws korvex::Error if a character was not
    /// counted; nothing is added then. O(bytes).
    void add(PathBatch& batch);

    /// Calls `visit` for the paths numbered `first` to `last`, or `numbers`, in that order. Throws
    /// Failure kFailed, before any call, for a number that the set does not have, and kDamaged with
    /// the first number whose path cannot be read. O(log paths + bytes) a path.
    void get(std::uint64_t first, std::uint64_t last, const NumberedPathVisitor& visit);
    void get(std::span<const std::uint64_t> numbers, const NumberedPathVisitor& visit);

    /// The same by folder. Neighbouring groups may be of one folder.
    void getGroups(std::span<const std::uint64_t> numbers, const GroupVisitor& visit);

    /// Calls `visit` for every path in the order of the set's own walk. A path that became a folder
    /// is not among them. Throws Failure kDamaged if they cannot be walked. O(bytes) a path.
    void walk(const PathBytesVisitor& visit);

    /// The characters of the set, and how often each occurs if that is known, else nothing.
    std::u16string characters() const;
    std::vector<double> frequencies() const;

    /// Sets how often each of characters() occurs, in their order.
    void setFrequencies(std::span<const double> frequencies);

    /// What is saved: a structure of the three fields above, 1 by 1. O(bytes).
    korvex::Array fields();

private:
    PathSet(korvex::Object object, std::uint64_t size, std::string name);

    void requireNumber(std::uint64_t number) const;
    void visitSome(std::span<const std::uint64_t> numbers, const NumberedPathVisitor& visit);
    Failure unreadable(std::uint64_t number, const std::string& reason) const;
    std::vector<korvex::Array> fetchGroups(std::span<const std::uint64_t> numbers);
    korvex::Array nextPath();

    korvex::Object object_;
    std::uint64_t size_ = 0;
    std::string name_;
};

}  // namespace zqpaths
