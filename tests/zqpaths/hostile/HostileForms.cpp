// Packed segments and saved forms: what is inflated, and what it says of itself.

#include <algorithm>
#include <numeric>

#include "tests/support/PathSets.hpp"
#include "tests/support/SavedBodies.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/zqpaths/hostile/HostileFiles.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace hostile {
namespace {

using compressedpaths::Bytes;
using compressedpaths::SavedBody;
using zqpaths::PathSetWriter;

std::string textOf(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

const std::string kTwoCharacters("x\0y\0", 4);

/// The shape of a code of two characters, and what stands before a trie.
SavedBody bodyOfTwoCharacters() {
    SavedBody body;
    body.shape({false, true, true});
    return body;
}

/// As it is, and as pieces that are imported.
template <class MakeBody>
void addForm(Files& files, const std::string& name, const char* attacks, MakeBody makeBody,
             Claim claim, bool isWhole = false) {
    const auto form = [makeBody] { return textOf(makeBody().form(true)); };
    files.push_back({name + ", packed", attacks, Kind::kPacked,
                     [form, claim](const std::string& file) {
                         writePacked(file, kTwoCharacters, form(), claim);
                     },
                     isWhole});
    files.push_back({name + ", in pieces", attacks, Kind::kPieces,
                     [form](const std::string& file) {
                         zqpaths::writeContent(file, form());
                         zqpaths::writeContent(treeStringBeside(file), kTwoCharacters);
                     },
                     isWhole});
}

/// A body that is inflated to so many zeros after its shape.
SavedBody zeros(std::size_t count) {
    return bodyOfTwoCharacters().bytes(Bytes(count, 0));
}

/// One folder in the other, and a file at the end.
SavedBody deepTrie(std::size_t levels) {
    Bytes structure(levels, 1);
    structure.push_back(0);
    SavedBody body = bodyOfTwoCharacters();
    body.trie(structure, std::vector<Bytes>(structure.size(), compressedpaths::x()));
    return body;
}

/// Many files in the root, which the totals of entries without folder count.
SavedBody manyFiles(std::size_t count) {
    Bytes structure(count, 2);
    structure.back() = 0;
    SavedBody body = bodyOfTwoCharacters();
    body.trie(structure, std::vector<Bytes>(count, compressedpaths::x()));
    return body;
}

void addBombs(Files& files) {
    addForm(files, "40 MB of zeros", "ratios", [] { return zeros(40'000'000); }, {4, 16});
    addForm(files, "4 MB of zeros that the text has room for", "ratios",
            [] { return zeros(4'000'000); }, {200'000, 2'000'000});
    addForm(files, "100,000 levels of a form", "depth", [] { return deepTrie(100'000); },
            {1, 300'000});
    addForm(files, "300,000 files of one name", "ratios", [] { return manyFiles(300'000); },
            {300'000, 900'000});
}

/// One entry in the root, of 2^60 paths: totals take eight bytes.
SavedBody hugeTotal() {
    SavedBody body = manyFiles(10);
    body.byte(1).byte(3).byte(0).byte(1).count8(std::uint64_t{1} << 60);
    return body.count8(1).byte(0).byte(0).sized({});
}

/// Tracks that all go down to the last folder; of each entry one path.
SavedBody deepTracks() {
    constexpr std::size_t kTracks = 200;
    Bytes totals(kTracks);
    std::iota(totals.begin(), totals.end(), std::uint8_t{1});
    return deepTrie(200).folders(totals, std::vector<Bytes>(kTracks, Bytes(201, 0)));
}

void addLies(Files& files) {
    addForm(files, "2^60 paths of ten files", "counts", hugeTotal, {10, 30});
    addForm(files, "2^62 nodes", "counts",
            [] { return bodyOfTwoCharacters().count8(std::uint64_t{1} << 62).byte(0); }, {10, 30});
    addForm(files, "tracks that all go down to the end", "depth", deepTracks, {200, 80'200}, true);
}

void addSizes(Files& files) {
    files.push_back({"a body of 2^63 bytes", "lengths", Kind::kPacked, [](const std::string& file) {
                         std::string form = textOf(manyFiles(10).form(true));
                         std::fill_n(form.begin(), 8, '\x7F');
                         writePacked(file, kTwoCharacters, form, {10, 30});
                     }});
    files.push_back({"a tree string of 60,000 times the same two characters", "overlaps",
                     Kind::kPacked, [](const std::string& file) {
                         std::string characters;
                         for (int i = 0; i < 60'000; ++i) characters += kTwoCharacters;
                         writePacked(file, characters, textOf(manyFiles(10).form(true)), {10, 30});
                     }});
    files.push_back(
        {"one path 300,000 times, packed", "ratios", Kind::kPacked, [](const std::string& file) {
             PathSetWriter writer(file, PathSetWriter::Mode::kReplace,
                                  PathSetWriter::Form::kPacked);
             for (int i = 0; i < 300'000; ++i) writer.add("a/b");
             writer.commit();
         }});
    files.back().isWhole = true;
}

}  // namespace

void addHostileForms(Files& files) {
    addBombs(files);
    addLies(files);
    addSizes(files);
}

}  // namespace hostile
