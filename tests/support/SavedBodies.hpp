#pragma once
// Saved forms written by hand, section by section, for what no set would write itself:
//
//     SavedBody body;
//     body.shape({false, true, true}).trie({2, 0}, {{1}, {2}}).byte(2);
//     Bytes bytes = body.form();  // not compressed
//
// All integers are given one byte where the form lets the writer choose a width.

#include <vector>

#include "compressedpaths/BPathTree.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "compressedpaths/sixpacks/CompressedBlocks.hpp"

namespace compressedpaths {

/// Keys of one character each, x for false and y for true.
inline Bytes x() {
    return {0, 1};
}
inline Bytes y() {
    return {1, 1};
}

class SavedBody {
public:
    SavedBody& byte(unsigned value) {
        body_.push_back(static_cast<std::uint8_t>(value));
        return *this;
    }

    SavedBody& bytes(const Bytes& values) {
        body_.insert(body_.end(), values.begin(), values.end());
        return *this;
    }

    SavedBody& count8(std::uint64_t count) {
        for (unsigned shift = 0; shift < 64; shift += 8)
            byte(static_cast<unsigned>(count >> shift & 0xFF));
        return *this;
    }

    SavedBody& shape(const std::vector<bool>& shape) {
        Bytes packed;
        sixpacks::boolVecToBytes(packed, shape);
        return count8(packed.size()).bytes(packed);
    }

    SavedBody& emptyTrie() { return trie({}, {}); }

    SavedBody& trie(const Bytes& structure, const std::vector<Bytes>& keys) {
        count8(structure.size()).bytes(structure);
        count8(keys.size()).byte(0);
        for (const Bytes& key : keys) sized(key);
        return *this;
    }

    /// The folder section: the running totals of paths, then the tracks.
    SavedBody& folders(const Bytes& totals, const std::vector<Bytes>& tracks) {
        byte(1).byte(0).byte(0).sized(totals);
        count8(tracks.size()).byte(0).byte(0);
        for (const Bytes& track : tracks) sized(track);
        return *this;
    }

    /// What each of the tracks ends with: true for the first file.
    SavedBody& trackEnds(const std::vector<bool>& ends) {
        Bytes packed;
        sixpacks::boolVecToBytes(packed, ends);
        return byte(2).count8(packed.size()).bytes(packed);
    }

    /// The beginning of the track section; entries follow, each a number and a sized track.
    SavedBody& tracks() { return byte(0).byte(0).byte(0).byte(0); }

    SavedBody& sized(const Bytes& values) {
        return byte(static_cast<unsigned>(values.size())).bytes(values);
    }

    Bytes form(bool compress = false) const {
        SavedBody form;
        form.count8(body_.size());
        Bytes body = body_;
        form.bytes(compress ? sixpacks::compressUint8(body) : body);
        return form.body_;
    }

private:
    Bytes body_;
};

}  // namespace compressedpaths
