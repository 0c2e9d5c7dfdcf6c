// Any alphabet, or any shape and tree string, and any code bytes: decoding gives what a walk from
// node to node gives, and coding the text gives code bytes that decode to it again.

#include <cstring>
#include <optional>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "tests/support/Peers.hpp"

using namespace compressedpaths;
using fuzzing::InputScript;
using fuzzing::require;
using fuzzing::succeeds;
using Peer = HuffmanPathTreePeer;

namespace {

std::u16string readCharacters(InputScript& script) {
    std::u16string characters;
    for (unsigned left = script.byte(); left > 0; --left)
        characters.push_back(static_cast<char16_t>(script.integer(2)));
    return characters;
}

void build(HuffmanPathTree& set, InputScript& script) {
    const std::u16string characters = readCharacters(script);
    std::vector<double> frequencies;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const std::uint64_t bits = script.integer(8);
        std::memcpy(&frequencies.emplace_back(), &bits, sizeof bits);
    }
    succeeds<AlphabetTooSmallException, CodeWordsTooLongException>(
        [&] { set.deflateHuffman(frequencies.data(), characters); });
}

void inflate(HuffmanPathTree& set, InputScript& script) {
    const std::u16string characters = readCharacters(script);
    const std::vector<std::uint8_t> shape = script.bytes(script.byte());
    // Two sizes, of which nobody needs the first; the shape; no structure bytes and no keys.
    Bytes form(16 + shape.size() + 17);
    form[8] = static_cast<std::uint8_t>(shape.size());
    std::copy(shape.begin(), shape.end(), form.begin() + 16);
    set.deserialize(form, false);
    succeeds<IncompleteCodingTreeException, CodeWordsTooLongException>(
        [&] { set.inflateHuffman(characters); });
}

/// The text of the code bytes, bit by bit.
std::u16string walkThrough(const HuffmanPathTree& set, const Bytes& code) {
    std::vector<bool> bits;
    sixpacks::bytesToBoolVec(code, bits);
    std::u16string text;
    auto position = static_cast<std::int32_t>(Peer::rootIndex(set));
    for (const bool bit : bits) {
        const HuffmanPathTree::HNode& node = Peer::nodes(set)[static_cast<std::size_t>(position)];
        position = static_cast<std::int32_t>(bit ? node.right : node.left);
        set.appendToPathIfLeaf(position, text);
    }
    return text;
}

std::optional<std::u16string> decode(const HuffmanPathTree& set, const Bytes& code) {
    std::u16string text;
    if (!succeeds<NoUsableCodingTreeException, InvalidCodeException>(
            [&] { text = set.generatePathFrom(code); }))
        return std::nullopt;
    return text;
}

void requireCodesBack(HuffmanPathTree& set, const std::u16string& text) {
    Bytes code;
    if (!succeeds<NoCodeForEmptyString, CodeNotFoundException>(
            [&] { code = set.generateCodeFor(text); }))
        return require(text.empty() || Peer::codes(set).empty(), "decoded text can be coded");
    if (Peer::nodes(set).size() > 1)
        require(decode(set, code) == text, "what is coded decodes to the same text");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    HuffmanPathTree set;
    if (script.byte() % 2 == 0)
        build(set, script);
    else
        inflate(set, script);
    auto position = static_cast<std::int32_t>(script.integer(4));
    std::u16string leafText;
    succeeds<InvalidCodeException>([&] { set.appendToPathIfLeaf(position, leafText); });

    const Bytes code = script.rest();
    const std::optional<std::u16string> text = decode(set, code);
    if (!text) return 0;
    const bool isWalkable = Peer::nodes(set).size() > 1 && code.size() > 1;
    if (isWalkable) require(*text == walkThrough(set, code), "decoding is a walk to leaves");
    requireCodesBack(set, *text);
    return 0;
}
