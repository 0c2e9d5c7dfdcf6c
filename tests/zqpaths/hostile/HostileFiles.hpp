#pragma once
// Files that were made to harm who reads them: each says of itself what cannot be, or what costs
// far more to read than to write. All their sums are right, so that nothing but the values tells.
//
//     for (const HostileFile& hostile : hostileFiles()) {
//         hostile.write("s.zqp");
//         ...
//     }
//
// Threads: free functions without state.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace hostile {

enum class Kind {
    kImage,      // a set file with an image
    kPacked,     // one with a packed segment
    kPieces,     // a saved form, its tree string in a file beside it
    kSetOfSets,  // a manifest, what it names beside it
};

struct HostileFile {
    std::string name;
    std::string attacks;  // by what
    Kind kind;
    std::function<void(const std::string& file)> write;
    bool isWhole = false;  // a set like any other, if an odd one: every question is answered
};

/// All of them.
std::vector<HostileFile> hostileFiles();

using Files = std::vector<HostileFile>;

// By what they attack.
void addHostileDirectories(Files& files);
void addHostileTries(Files& files);
void addHostileIndexes(Files& files);
void addHostileCodes(Files& files);
void addHostileForms(Files& files);
void addHostileManifests(Files& files);

/// What a directory says of a segment.
struct Claim {
    std::uint64_t pathCount;
    std::uint64_t textSize;  // with one more for each path
};

/// A set file with one segment, whatever it holds.
void writeSegment(const std::string& file, const std::string& image, Claim claim);
void writePacked(const std::string& file, const std::string& treeString, const std::string& form,
                 Claim claim);

/// The name of the file with the tree string of the saved form in a file.
std::string treeStringBeside(const std::string& file);

}  // namespace hostile
