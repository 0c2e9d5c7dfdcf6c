#pragma once
// CodingTree is the tree of a saved set's code, read from its shape and the characters of its
// leaves:
//
//     const CodingTree tree(shape, u"cba");
//     tree.decode(code);  // "cab"
//     tree.codeLengths(); // bits of each character, in the order of the characters
//
// Threads: a tree never changes, so that any number of threads may read it.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zqpaths {

class CodingTree {
public:
    /// Throws Failure kDamaged if the shape, a bit vector, ends before the tree is complete, or has
    /// more leaves than there are characters. No shape at all is a tree without leaves.
    CodingTree(std::span<const std::uint8_t> shape, std::u16string_view characters);

    const std::vector<unsigned>& codeLengths() const noexcept { return codeLengths_; }

    /// The name with this code. Throws Failure kDamaged if there is none.
    std::u16string decode(std::span<const std::uint8_t> code) const;

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFF;

    struct Node {
        std::array<std::uint32_t, 2> children{kNone, kNone};  // both, or none of a leaf
        std::uint32_t leaf = kNone;                           // the position of its character
    };

    std::u16string characters_;
    std::vector<Node> nodes_;  // in pre-order
    std::vector<unsigned> codeLengths_;
};

}  // namespace zqpaths
