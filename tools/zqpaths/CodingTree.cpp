#include "tools/zqpaths/CodingTree.hpp"

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

constexpr unsigned kBitsAByte = 8;

/// Bits in bytes, first one lowest; the last byte counts those of the byte before it.
class BitVector {
public:
    explicit BitVector(std::span<const std::uint8_t> bytes) : bytes_(bytes) {
        if (bytes.size() < 2) return;
        if (bytes.back() >= kBitsAByte)
            throw Failure(ExitStatus::kDamaged, "damaged: a bit vector counts more than 7 bits");
        size_ = (bytes.size() - 2) * kBitsAByte + bytes.back();
    }

    std::size_t size() const noexcept { return size_; }
    bool operator[](std::size_t index) const {
        return (bytes_[index / kBitsAByte] >> (index % kBitsAByte) & 1) != 0;
    }

private:
    std::span<const std::uint8_t> bytes_;
    std::size_t size_ = 0;
};

}  // namespace

CodingTree::CodingTree(std::span<const std::uint8_t> shape, std::u16string_view characters)
    : characters_(characters) {
    const BitVector bits(shape);
    std::vector<std::uint32_t> open;  // from the root on, nodes that miss a child
    for (std::size_t i = 0; i < bits.size() && (nodes_.empty() || !open.empty()); ++i) {
        const auto number = static_cast<std::uint32_t>(nodes_.size());
        Node& node = nodes_.emplace_back();
        if (bits[i]) {
            node.leaf = static_cast<std::uint32_t>(codeLengths_.size());
            codeLengths_.push_back(static_cast<unsigned>(open.size()));
        }
        if (!open.empty()) {
            auto& [left, right] = nodes_[open.back()].children;
            (left == kNone ? left : right) = number;
        }
        if (!bits[i]) open.push_back(number);
        while (!open.empty() && nodes_[open.back()].children[1] != kNone) open.pop_back();
    }
    if (!open.empty() || codeLengths_.size() > characters.size())
        throw Failure(ExitStatus::kDamaged,
                      "damaged: the shape has " + std::to_string(codeLengths_.size()) +
                          " leaves for " + std::to_string(characters.size()) + " characters");
}

std::u16string CodingTree::decode(std::span<const std::uint8_t> code) const {
    const BitVector bits(code);
    std::u16string text;
    const Node* node = nodes_.data();
    for (std::size_t i = 0; i < bits.size(); ++i) {
        if (nodes_.empty() || node->children[0] == kNone)
            throw Failure(ExitStatus::kDamaged, "damaged: a name has no characters");
        node = &nodes_[node->children[bits[i] ? 1 : 0]];
        if (node->leaf == kNone) continue;
        text.push_back(characters_[node->leaf]);
        node = nodes_.data();
    }
    return text;
}

}  // namespace zqpaths
