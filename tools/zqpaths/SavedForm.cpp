#include "tools/zqpaths/SavedForm.hpp"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <utility>

#include "tools/zqpaths/CodingTree.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/ZlibStream.hpp"

namespace zqpaths {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::size_t kSizeBytes = 8;
constexpr std::uint8_t kWidestTag = 3;
constexpr std::uint8_t kFolderSection = 1;
constexpr unsigned kBitsAByte = 8;

/// Reads what a form holds from its front to its end and never beyond.
class Cursor {
public:
    /// `offset` is that of the first byte in the form.
    Cursor(Bytes bytes, std::uint64_t offset) : bytes_(bytes), firstOffset_(offset) {}

    std::uint64_t position() const noexcept { return position_; }
    bool isAtEnd() const noexcept { return position_ == bytes_.size(); }

    Bytes take(std::uint64_t count) {
        if (count > bytes_.size() - position_)
            fail(std::to_string(count) + " bytes are announced, " +
                 std::to_string(bytes_.size() - position_) + " are left");
        const Bytes taken = bytes_.subspan(position_, count);
        position_ += count;
        return taken;
    }

    std::uint64_t takeInteger(std::size_t width) {
        const Bytes digits = take(width);
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < width; ++i)
            value |= std::uint64_t{digits[i]} << (kBitsAByte * i);
        return value;
    }

    std::size_t takeWidth() {
        const std::uint64_t tag = takeInteger(1);
        if (tag > kWidestTag) {
            --position_;
            fail("there is no width " + std::to_string(tag));
        }
        return std::size_t{1} << tag;
    }

    void passIntegers(std::size_t elementWidth, std::size_t countWidth) {
        const std::uint64_t count = takeInteger(countWidth);
        requireElements(count, elementWidth);
        take(count * elementWidth);
    }

    /// That there can be so many elements of at least `leastSize` bytes each.
    void requireElements(std::uint64_t count, std::size_t leastSize) const {
        if (count > (bytes_.size() - position_) / leastSize)
            fail(std::to_string(count) + " elements are announced, " +
                 std::to_string(bytes_.size() - position_) + " bytes are left");
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw Failure(
            ExitStatus::kDamaged,
            "damaged at byte " + std::to_string(firstOffset_ + position_) + ": " + reason);
    }

private:
    Bytes bytes_;
    std::uint64_t firstOffset_;
    std::uint64_t position_ = 0;
};

/// The nodes on the tracks of folders.
std::unordered_map<std::uint64_t, std::u16string> nodesOf(
    const std::vector<TrieOutline::Folder>& folders) {
    std::unordered_map<std::uint64_t, std::u16string> names;
    for (const TrieOutline::Folder& folder : folders)
        for (const std::uint64_t node : folder.track) names.emplace(node, std::u16string());
    return names;
}

/// Passes the keys, and decodes those of folders that are to be named.
void readKeys(Cursor& cursor, const CodingTree& tree, SavedForm& form) {
    const std::uint64_t count = cursor.takeInteger(kSizeBytes);
    const std::size_t width = cursor.takeWidth();
    if (count < form.trie.nodeCount)
        cursor.fail(std::to_string(count) + " keys are too few for " +
                    std::to_string(form.trie.nodeCount) + " nodes");
    cursor.requireElements(count, width);

    auto names = nodesOf(form.trie.largestFolders);
    for (std::uint64_t node = 0; node < count; ++node) {
        const Bytes key = cursor.take(cursor.takeInteger(width));
        const auto found = names.find(node);
        if (found != names.end()) found->second = tree.decode(key);
    }
    for (const TrieOutline::Folder& folder : form.trie.largestFolders) {
        SavedForm::Folder& named = form.largestFolders.emplace_back();
        named.fileCount = folder.fileCount;
        for (const std::uint64_t node : folder.track) named.components.push_back(names[node]);
    }
}

/// Everything behind the keys belongs to the index; what follows the folder section has no counts.
void readIndex(Cursor& cursor, SavedForm& form) {
    if (cursor.isAtEnd() || cursor.takeInteger(1) != kFolderSection) return;
    const std::size_t totalWidth = cursor.takeWidth();
    const std::size_t totalCountWidth = cursor.takeWidth();
    cursor.passIntegers(totalWidth, totalCountWidth);
    form.entryCount = cursor.takeInteger(kSizeBytes);
    const std::size_t positionWidth = cursor.takeWidth();
    const std::size_t lengthWidth = cursor.takeWidth();
    cursor.requireElements(form.entryCount, lengthWidth);
    for (std::uint64_t entry = 0; entry < form.entryCount; ++entry)
        cursor.passIntegers(positionWidth, lengthWidth);
}

void measureSections(Bytes stream, SavedForm& form) {
    const std::array<SavedForm::Section*, 4> sections{&form.shape, &form.structure, &form.keys,
                                                      &form.index};
    std::array<std::uint64_t, 4> byteSizes{};
    std::ranges::transform(sections, byteSizes.begin(),
                           [](const SavedForm::Section* section) { return section->byteSize; });
    const std::vector<std::uint64_t> savedSizes = deflatedSizes(stream, byteSizes);
    for (std::size_t i = 0; i < sections.size(); ++i) sections[i]->savedSize = savedSizes[i];
}

}  // namespace

SavedForm readSavedForm(std::span<const std::uint8_t> bytes, std::u16string_view characters,
                        std::size_t folderLimit) {
    Cursor size(bytes, 0);
    const std::uint64_t statedSize = size.takeInteger(kSizeBytes);
    const Bytes stream = bytes.subspan(kSizeBytes);
    const std::vector<std::uint8_t> body = inflateStream(stream, statedSize);

    SavedForm form;
    form.byteSize = body.size();
    form.savedSize = bytes.size();
    Cursor cursor(body, kSizeBytes);
    const CodingTree tree(cursor.take(cursor.takeInteger(kSizeBytes)), characters);
    form.codeLengths = tree.codeLengths();
    form.shape.byteSize = cursor.position();

    form.trie = outlineTrie(cursor.take(cursor.takeInteger(kSizeBytes)), folderLimit);
    form.structure.byteSize = cursor.position() - form.shape.byteSize;

    const std::uint64_t beginOfKeys = cursor.position();
    readKeys(cursor, tree, form);
    form.keys.byteSize = cursor.position() - beginOfKeys;
    readIndex(cursor, form);
    form.index.byteSize = body.size() - beginOfKeys - form.keys.byteSize;
    measureSections(stream, form);
    return form;
}

}  // namespace zqpaths
