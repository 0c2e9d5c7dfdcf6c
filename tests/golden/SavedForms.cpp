#include "tests/golden/SavedForms.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string_view>

#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "compressedpaths/sixpacks/PackedIntegers.hpp"
#include "tests/golden/Sha256.hpp"
#include "tests/golden/Throwing.hpp"
#include "tests/golden/TrieRows.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths::golden {
namespace {

using sixpacks::ByteReader;

constexpr std::size_t kLengthSize = 8;  // of the length in front of the body

// How far the reader of a truncation record gets.
constexpr const char* kReadsToTheEnd = "to the end";
constexpr const char* kReadsPastTheEnd = "past the end of the form";

Bytes savedForm(HuffmanPathTree& set, const Bytes& before, bool compress) {
    Bytes bytes = before;
    set.serialize(bytes, compress);
    return bytes;
}

// --- Width tags, read from the form as docs/format.md draws it.

std::uint64_t readTag(ByteReader& in, Counters& tags, const char* name) {
    const std::uint64_t tag = in.readInteger(1);
    const auto [entry, isNew] = tags.emplace(name, tag);
    EXPECT_TRUE(isNew || entry->second == tag) << name << " differs between the sections";
    return tag;
}

void skipVector(ByteReader& in, std::uint64_t elementTag, std::uint64_t countTag) {
    const std::uint64_t count = in.readInteger(1U << countTag);
    in.readBytes(count << elementTag);
}

Counters widthTagsOf(const Bytes& form) {
    constexpr std::uint64_t kByteTag = 0;
    constexpr std::uint64_t kCount8Tag = 3;
    Counters tags;
    ByteReader in(form);
    in.readBytes(kLengthSize);
    skipVector(in, kByteTag, kCount8Tag);  // the shape of the coding tree
    skipVector(in, kByteTag, kCount8Tag);  // the structure of the trie
    const std::uint64_t keyCount = in.readInteger(8);
    const std::uint64_t keyTag = readTag(in, tags, "tK");
    for (std::uint64_t i = 0; i < keyCount; ++i) skipVector(in, kByteTag, keyTag);
    if (in.isAtEnd()) return tags;

    if (in.readInteger(1) == 1) {
        const std::uint64_t endTag = readTag(in, tags, "tE");
        const std::uint64_t endCountTag = readTag(in, tags, "tN");
        skipVector(in, endTag, endCountTag);
        const std::uint64_t trackCount = in.readInteger(8);
        const std::uint64_t positionTag = readTag(in, tags, "tI");
        const std::uint64_t lengthTag = readTag(in, tags, "tD");
        for (std::uint64_t i = 0; i < trackCount; ++i) skipVector(in, positionTag, lengthTag);
        if (in.isAtEnd()) return tags;
        std::uint64_t section = in.readInteger(1);
        if (section == 2) {
            skipVector(in, kByteTag, kCount8Tag);  // what each track ends with
            if (in.isAtEnd()) return tags;
            section = in.readInteger(1);
        }
        EXPECT_EQ(section, 0U);
    }
    readTag(in, tags, "tI");
    readTag(in, tags, "tL");
    readTag(in, tags, "tP");
    return tags;
}

/// The tags that the counters alone give.
Counters widthTagsOfCounters(HuffmanPathTree& set) {
    const auto tagOf = [](std::size_t value) {
        return static_cast<std::uint64_t>(sixpacks::widthOf(value));
    };
    Bytes structure;
    std::vector<Bytes> keys;
    const std::size_t maxFanOut = set.serializePathTree(structure, keys);
    return {{"tK", tagOf(HuffmanPathTreePeer::maxCodeBytes(set))},
            {"tE", tagOf(HuffmanPathTreePeer::pathCount(set))},
            {"tN", tagOf(HuffmanPathTreePeer::partitionEnds(set).size())},
            {"tI", tagOf(maxFanOut)},
            {"tD", tagOf(HuffmanPathTreePeer::maxFolderDepth(set))}};
}

// --- The bytes.

/// Compares a form with the field `name`, or with its digest when the record gives only that.
void expectForm(const Bytes& form, Fields& step, const std::string& name) {
    SCOPED_TRACE(name);
    const Json* const whole = step.find(name.c_str());
    const Json* const digest = step.find((name + "_sha256").c_str());
    EXPECT_TRUE(whole != nullptr || digest != nullptr) << "nothing to compare with";
    if (whole != nullptr) {
        EXPECT_EQ(hexOf(form), textOf(*whole));
    }
    if (digest != nullptr) {
        EXPECT_EQ(sha256Of(form), textOf(*digest));
    }
}

/// Expects `plain_fixed`, then each of `plain_entries` once in any order. No entry begins another:
/// they begin with different numbers of one width.
void expectFormInAnyOrder(const Bytes& form, Fields& step) {
    const std::string text = hexOf(form);
    const std::string fixed = textOf(step["plain_fixed"]);
    ASSERT_EQ(text.substr(0, fixed.size()), fixed);
    std::string_view rest = std::string_view(text).substr(fixed.size());
    const Texts entries = textsOf(step["plain_entries"]);
    std::set<std::string> missing(entries.begin(), entries.end());
    while (!rest.empty()) {
        const auto next = std::ranges::find_if(
            missing, [rest](const std::string& entry) { return rest.starts_with(entry); });
        ASSERT_NE(next, missing.end()) << "no entry begins " << rest;
        rest.remove_prefix(next->size());
        missing.erase(next);
    }
    EXPECT_TRUE(missing.empty());
}

/// Expects the same length in front of both forms, and the same body.
void expectSameBody(const Bytes& plain, Bytes& packed, std::size_t start) {
    const std::size_t bodyStart = start + kLengthSize;
    ASSERT_GE(packed.size(), bodyStart);
    const auto lengthEnd = static_cast<std::ptrdiff_t>(bodyStart);
    EXPECT_TRUE(std::equal(packed.begin(), packed.begin() + lengthEnd, plain.begin()));
    EXPECT_EQ(hexOf(sixpacks::decompressUint8(packed.begin() + lengthEnd, packed.size() - bodyStart,
                                              plain.size() - bodyStart)),
              hexOf(Bytes(plain.begin() + lengthEnd, plain.end())));
}

// --- What reading a form gives.

bool hasSameIndex(const HuffmanPathTree& a, const HuffmanPathTree& b) {
    using Peer = HuffmanPathTreePeer;
    return Peer::partitionEnds(a) == Peer::partitionEnds(b) &&
           Peer::folderTracks(a) == Peer::folderTracks(b) &&
           Peer::pathTracks(a) == Peer::pathTracks(b);
}

/// Expects that `read`, which was read from a form of `set`, is what `expect` says.
void expectIndexAndTrie(const HuffmanPathTree& read, const HuffmanPathTree& set, Fields& expect) {
    using Peer = HuffmanPathTreePeer;
    EXPECT_EQ(Peer::pathCount(read), integerOf(expect["path_count"]));
    EXPECT_EQ(Peer::partitionEnds(read).size(), integerOf(expect["entries"]));
    EXPECT_EQ(Peer::folderTracks(read).size(), integerOf(expect["folder_tracks"]));
    EXPECT_EQ(Peer::pathTracks(read).size(), integerOf(expect["path_tracks"]));
    EXPECT_EQ(rowsOf(Peer::pathTree(read)) == rowsOf(Peer::pathTree(set)),
              flagOf(expect["same_trie"]));
    EXPECT_EQ(hasSameIndex(read, set), flagOf(expect["same_index"]));
}

/// Expects that reading the form in which `set` is saved gives the whole set back.
void expectReadsBack(const HuffmanPathTree& set, Bytes form, Fields& expect) {
    EXPECT_EQ(textOf(expect["reads"]), kReadsToTheEnd);
    EXPECT_TRUE(flagOf(expect["same_trie"]));
    EXPECT_TRUE(flagOf(expect["same_index"]));
    HuffmanPathTree read;
    read.deserialize(form, false);
    expectIndexAndTrie(read, set, expect);
}

/// Expects that a form of `set` with values cut is refused, or that reading it gives what `expect`
/// says; and that it is refused if what is cut leads past its end.
void expectReadsBackOrRefuses(const HuffmanPathTree& set, Bytes form, Fields& expect) {
    const std::string end = textOf(expect["reads"]);
    EXPECT_TRUE(end == kReadsToTheEnd || end == kReadsPastTheEnd) << end;
    HuffmanPathTree read;
    const auto refusal = thrownBy([&] { read.deserialize(form, false); });
    if (refusal) {
        const std::vector<Thrown> refusals{
            describe(sixpacks::PrematureEndException()), describe(IncompleteTrieException()),
            describe(DescendingPathTotalsException()), describe(InvalidTrackException())};
        EXPECT_NE(std::ranges::find(refusals, *refusal), refusals.end()) << *refusal;
        for (const char* const name :
             {"path_count", "entries", "folder_tracks", "path_tracks", "same_trie", "same_index"})
            expect.find(name);  // said of a reader that refuses nothing
    } else {
        EXPECT_EQ(end, kReadsToTheEnd);
        expectIndexAndTrie(read, set, expect);
    }
}

}  // namespace

Counters recordedCounters(const Json& object) {
    if (!object.IsObject()) throw UnreadableRecord("not an object");
    Counters counters;
    for (const auto& member : object.GetObject())
        counters[member.name.GetString()] = integerOf(member.value);
    return counters;
}

void expectSavedForms(HuffmanPathTree& set, Fields& step) {
    const Bytes before = step.orEmpty("before", bytesOf);
    const Bytes plain = savedForm(set, before, false);
    Bytes packed = savedForm(set, before, true);

    const auto start = static_cast<std::ptrdiff_t>(before.size());
    const Bytes form(plain.begin() + start, plain.end());
    EXPECT_EQ(form.size() - kLengthSize, integerOf(step["length"]));
    EXPECT_EQ(ByteReader(form).readInteger(kLengthSize), integerOf(step["length"]));
    EXPECT_EQ(widthTagsOf(form), recordedCounters(step["tags"]));
    expectSameBody(plain, packed, before.size());

    if (flagOf(step["any_order"])) {
        expectFormInAnyOrder(plain, step);
        return;
    }
    expectForm(plain, step, "plain");
    expectForm(packed, step, "packed");
    if (const Json* length = step.find("packed_length")) {
        EXPECT_EQ(packed.size(), integerOf(*length));
    }
}

void expectLosslessForm(HuffmanPathTree& set, Fields& step) {
    const Bytes form = savedForm(set, {}, false);
    expectForm(form, step, "lossless");
    EXPECT_EQ(widthTagsOf(form), recordedCounters(step["lossless_tags"]));
    EXPECT_EQ(widthTagsOfCounters(set), recordedCounters(step["literal_tags"]));

    Fields losslessRead(step["lossless_reads_back"]);
    {
        SCOPED_TRACE("reading the lossless form");
        expectReadsBack(set, form, losslessRead);
    }
    losslessRead.requireAllRead();

    const Bytes literalForm = bytesOf(step["literal"]);
    expectForm(literalForm, step, "literal");
    Fields literalRead(step["literal_reads_back"]);
    {
        SCOPED_TRACE("reading the literal form");
        const bool isCut = literalForm != form;
        (isCut ? expectReadsBackOrRefuses : expectReadsBack)(set, literalForm, literalRead);
    }
    literalRead.requireAllRead();
}

}  // namespace compressedpaths::golden
