#pragma once
// Saved sets of all kinds, and every small damage that can be done to one:
//
//     for (const SavedSample& sample : savedSamples())
//         forAllDamages(sample.bytes, [&](const Bytes& damaged) { ... });

#include <ostream>
#include <string>
#include <vector>

#include "tests/support/PathSets.hpp"

namespace compressedpaths {

struct SavedSample {
    std::string name;
    std::u16string treeString;
    Bytes plain;
    Bytes compressed;
};

inline void PrintTo(const SavedSample& sample, std::ostream* out) {
    *out << sample.name;
}

inline SavedSample sampleOf(const std::string& name, HuffmanPathTree& set) {
    return {name, set.getTreeString(), savedForm(set, false), savedForm(set, true)};
}

inline SavedSample sampleOf(const std::string& name, const TextEntries& entries) {
    HuffmanPathTree set;
    makeCode(set, u"abcdef0123");
    addBatch(set, entries);
    return sampleOf(name, set);
}

inline SavedSample sampleWithDuplicates() {
    HuffmanPathTree set;
    makeCode(set, u"abcd");
    addBatch(set, {{{u"a", u"b"}, {u"c", u"c"}}, {{u"a", u"b"}, {u"d"}}});
    for (const TextPath& path :
         {TextPath{u"a", u"b", u"c"}, TextPath{u"d", u"d"}, TextPath{u"d", u"d"}})
        addSinglePath(set, path);
    return sampleOf("folders and duplicates", set);
}

inline SavedSample sampleOfDuplicatesAlone() {
    HuffmanPathTree set;
    makeCode(set, u"abcd");
    for (const TextPath& path : {TextPath{u"a"}, TextPath{u"a"}, TextPath{u"b", u"a"},
                                 TextPath{u"a"}, TextPath{u"b", u"a"}})
        addSinglePath(set, path);
    return sampleOf("duplicates alone", set);
}

/// Integers of two bytes for key lengths, positions and path numbers.
inline SavedSample sampleOfSeveralWidths() {
    TextEntry many{{u"a"}, {std::u16string(900, u'a')}};
    for (int file = 0; file < 260; ++file) many.files.emplace_back(u"b");
    return sampleOf("several widths", {many, {{u"a"}, {u"c"}}, {{u"d"}, {u"e"}}});
}

inline std::vector<SavedSample> savedSamples() {
    HuffmanPathTree nothing;
    HuffmanPathTree onlyCode;
    makeCode(onlyCode, u"abc");
    return {sampleOf("nothing", nothing),
            sampleOf("a code alone", onlyCode),
            sampleOf("folders", {{{u"a", u"b"}, {u"c", u"d", u"e"}},
                                 {{u"a"}, {u"f"}},
                                 {{u"a", u"b"}, {u"0", u"1"}},
                                 {{u"c"}, {}},
                                 {{u"a", u"b"}, {}}}),
            sampleOf("a file that became a folder",
                     {{{u"a"}, {u"c"}}, {{u"a"}, {u"b", u"d"}}, {{u"a", u"b"}, {u"e"}}}),
            sampleOf("a track that the rule misreads",
                     {{{u"a"}, {u"c"}}, {{u"a"}, {u"b"}}, {{u"a", u"b"}, {u"e"}}}),
            sampleOf("files without folder", {{{}, {u"a", u"b"}}, {{u"c"}, {u"d"}}}),
            sampleWithDuplicates(),
            sampleOfDuplicatesAlone(),
            sampleOfSeveralWidths()};
}

/// Every byte with one bit turned, every byte all zeros and all ones, every shorter length.
template <class Visit>
void forAllDamages(const Bytes& bytes, Visit visit) {
    Bytes damaged = bytes;
    for (std::size_t position = 0; position < bytes.size(); ++position) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            damaged[position] = static_cast<std::uint8_t>(bytes[position] ^ 1U << bit);
            visit(damaged);
        }
        for (const std::uint8_t value : Bytes{0x00, 0xFF}) {
            damaged[position] = value;
            visit(damaged);
        }
        damaged[position] = bytes[position];
    }
    for (std::size_t length = 0; length < bytes.size(); ++length)
        visit(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length)));
}

}  // namespace compressedpaths
