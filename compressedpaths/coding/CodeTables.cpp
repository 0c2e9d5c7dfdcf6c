#include "compressedpaths/coding/CodeTables.hpp"

#include <algorithm>
#include <cassert>

#include "compressedpaths/coding/CodeTableFields.hpp"
#include "compressedpaths/sixpacks/BitVectors.hpp"

namespace compressedpaths {
namespace {

using namespace code_tables;
using sixpacks::loadBits;

/// Goes through a coding tree in pre-order, once, and writes down what it comes to.
class TableMaker {
public:
    TableMaker(CodeTables::Arrays& arrays, std::u16string_view leaves)
        : arrays_(arrays), leaves_(leaves), targets_(kStepCount) {}

    void make(const std::vector<bool>& shape, bool hasWords) {
        hasWords_ = hasWords;
        bool isComplete = shape.empty();
        for (std::size_t i = 0; i < shape.size() && !isComplete; ++i) {
            if (shape[i]) {
                addLeaf(leaves_[leafCount_++]);
                isComplete = !turnRight();
            } else {
                addBranch();
            }
        }
        assert(isComplete);
        if (!arrays_.branches.isEmpty()) makeSteps();
        arrays_.words.shrink();
        arrays_.longWords.shrink();
        arrays_.longBits.shrink();
        arrays_.branches.shrink();
    }

private:
    /// What a look-up leads to first.
    struct Target {
        std::uint32_t branch;  // as in `branches`
        unsigned length;       // bits to it
    };

    bool lastBit() const noexcept { return (path_[(depth_ - 1) / 8] >> (depth_ - 1) % 8 & 1) != 0; }

    /// Lets the parent and the look-ups lead to what comes next in pre-order.
    void link(std::uint32_t branch) {
        if (depth_ == 0) return;
        arrays_.branches.at(2 * std::size_t{open_.back()} + (lastBit() ? 1 : 0)) = branch;

        constexpr std::size_t kBits = CodeTables::kLookUpBits;
        if (depth_ > kBits || (depth_ < kBits && (branch & kLeaf) == 0)) return;
        const std::size_t distance = std::size_t{1} << depth_;
        for (std::size_t bits = loadBits(path_.data()) & (distance - 1); bits < kStepCount;
             bits += distance)
            targets_[bits] = {branch, static_cast<unsigned>(depth_)};
    }

    void addBranch() {
        const auto branch = static_cast<std::uint32_t>(arrays_.branches.size() / 2);
        assert(branch < kLeaf);
        link(branch);
        arrays_.branches.reserveFor(2);
        arrays_.branches.append(0);
        arrays_.branches.append(0);
        open_.push_back(branch);
        if (depth_ / 8 + sizeof(std::uint64_t) >= path_.size()) path_.resize(2 * path_.size());
        ++depth_;
    }

    void addLeaf(char16_t character) {
        link(kLeaf | character);
        if (!hasWords_) return;
        std::uint64_t& word = wordAt(character);
        if (word == kNoWord) word = depth_ <= kMaxWordLength ? shortWord() : addLongWord();
    }

    /// Goes from a leaf to what follows it in pre-order; false if nothing does.
    bool turnRight() {
        for (; depth_ > 0 && lastBit(); --depth_) {
            path_[(depth_ - 1) / 8] &= static_cast<std::uint8_t>(~(1U << (depth_ - 1) % 8));
            open_.pop_back();
        }
        if (depth_ == 0) return false;
        path_[(depth_ - 1) / 8] |= static_cast<std::uint8_t>(1U << (depth_ - 1) % 8);
        return true;
    }

    std::uint64_t& wordAt(char16_t character) {
        if (arrays_.pageOf.isEmpty()) arrays_.pageOf.assign(kPageCount, kNoPage);
        std::uint16_t& page = arrays_.pageOf.at(character >> 8);
        if (page == kNoPage) {
            arrays_.words.reserveFor(kPageSize);
            page = static_cast<std::uint16_t>(arrays_.words.size() / kPageSize);
            std::fill_n(arrays_.words.extend(kPageSize), kPageSize, kNoWord);
        }
        return arrays_.words.at(page * kPageSize + (character & 0xFF));
    }

    std::uint64_t shortWord() const noexcept {
        return std::uint64_t{depth_} << kWordLengthShift | loadBits(path_.data());
    }

    std::uint64_t addLongWord() {
        const std::size_t byteSize = (depth_ + 7) / 8;
        const std::size_t position = arrays_.longWords.size() / 2;
        arrays_.longWords.reserveFor(2);
        arrays_.longBits.reserveFor(byteSize);
        arrays_.longWords.append(static_cast<std::uint32_t>(arrays_.longBits.size()));
        arrays_.longWords.append(static_cast<std::uint32_t>(depth_));
        arrays_.longBits.append(path_.data(), byteSize);
        return kLongWord | position;
    }

    void makeSteps() {
        arrays_.steps.reserveFor(kStepCount);
        for (std::size_t bits = 0; bits < kStepCount; ++bits) arrays_.steps.append(stepOf(bits));
    }

    std::uint64_t stepOf(std::size_t bits) const noexcept {
        const Target first = targets_[bits];
        if ((first.branch & kLeaf) == 0)
            return kOtherStep | kWalkStep | std::uint64_t{first.branch} << 32 | first.length;
        const std::uint64_t unit = first.branch & 0xFFFF;
        if (unit >= 0x80) return kOtherStep | unit << 32 | first.length;

        std::uint64_t characters = 0;
        std::uint64_t ends = 0;
        unsigned count = 0;
        unsigned length = 0;
        for (; count < kMaxStepCharacters; ++count) {
            const Target next = targets_[bits >> length];
            const bool isAscii = (next.branch & kLeaf) != 0 && (next.branch & 0xFFFF) < 0x80;
            if (!isAscii || length + next.length > CodeTables::kLookUpBits) break;
            length += next.length;
            characters |= std::uint64_t{next.branch & 0xFF} << 8 * count;
            ends |= std::uint64_t{length} << 4 * count;
        }
        for (unsigned i = count; i < kMaxStepCharacters; ++i)
            ends |= std::uint64_t{kNoEnd} << 4 * i;
        return characters << 32 | ends << 16 | (count - 1) << 8 | length;
    }

    CodeTables::Arrays& arrays_;
    std::u16string_view leaves_;
    bool hasWords_ = true;
    std::size_t leafCount_ = 0;
    std::vector<Target> targets_;
    std::vector<std::uint32_t> open_;  // the branches above the present place, the root first
    // The bits that lead to it; those from depth_ on are zero, and eight bytes can be loaded.
    std::vector<std::uint8_t> path_ = std::vector<std::uint8_t>(16);
    std::size_t depth_ = 0;
};

}  // namespace

CodeTables::CodeTables(const std::vector<bool>& shape, std::u16string_view leaves) {
    TableMaker(arrays_, leaves).make(shape, true);
}

CodeTables CodeTables::forDecoding(const std::vector<bool>& shape, std::u16string_view leaves) {
    CodeTables tables;
    TableMaker(tables.arrays_, leaves).make(shape, false);
    return tables;
}

CodeTables::CodeTables(Arrays arrays) noexcept {
    if (arrays.pageOf.size() == kPageCount) {
        arrays_.pageOf.swap(arrays.pageOf);
        arrays_.words.swap(arrays.words);
        arrays_.longWords.swap(arrays.longWords);
        arrays_.longBits.swap(arrays.longBits);
    }
    if (arrays.steps.size() == kStepCount) {
        arrays_.steps.swap(arrays.steps);
        arrays_.branches.swap(arrays.branches);
    }
}

}  // namespace compressedpaths
