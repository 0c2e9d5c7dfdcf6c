#include "zqpaths/set/Segment.hpp"

#include <algorithm>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "zqpaths/set/TreeStringBytes.hpp"

namespace zqpaths {
namespace {

using compressedpaths::HuffmanPathTree;

constexpr std::size_t kPathsATelling = 4096;  // to a watcher

/// More than the body of a saved form takes whose paths are text of this size: a byte of text is
/// sixteen bits of code at most on average, and no name, position or total has a share of its own
/// without at least one byte. What claims to be longer is not inflated.
std::uint64_t maxBodySize(std::uint64_t textSize) {
    constexpr std::uint64_t kBytesAByte = 32;
    constexpr std::uint64_t kCodeAndCounters = std::uint64_t{1} << 20;
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    if (textSize > (kMost - kCodeAndCounters) / kBytesAByte) return kMost;
    return textSize * kBytesAByte + kCodeAndCounters;
}

}  // namespace

Segment::Segment(std::shared_ptr<const SetFile> file, const SegmentEntry& entry,
                 std::uint64_t firstNumber)
    : file_(std::move(file)), entry_(entry), firstNumber_(firstNumber) {}

const HuffmanPathTree& Segment::set() const {
    const Opened& opened = opened_.get([this]() -> Opened {
        try {
            return {openAnew(), std::nullopt};
        } catch (const Error& damage) {
            return {nullptr, damage};
        }
    });
    if (opened.damage) throw Error(*opened.damage);
    return *opened.set;
}

std::unique_ptr<HuffmanPathTree> Segment::openAnew() const {
    return entry_.form == SegmentForm::kImage ? openImage() : inflate();
}

void Segment::appendPath(std::size_t position, std::string& text) const {
    const std::size_t size = text.size();
    read([&](const HuffmanPathTree& set) { set.appendText(position, kSeparatorText, text); });
    const std::string_view joined = std::string_view(text).substr(size);
    text.erase(size, joined.size() - pathOfComponents(joined).size());
}

void Segment::verify(const WorkWatcher& watch) const {
    translated([&] {
        if (entry_.form == SegmentForm::kImage)
            HuffmanPathTree::verifyImage(file_->bytesOf(entry_));
        const auto set = openAnew();
        std::uint64_t textSize = 0;
        const auto look = [&](std::size_t position, std::string_view path) {
            textSize += path.size() + 1;
            if (watch && position % kPathsATelling == 0) watch(WorkStep::kReading, kPathsATelling);
            if (path.empty() || path.find('\0') != std::string_view::npos)
                refuse("path number " + std::to_string(position) + " of it is none");
        };
        forEachPathOf(*set, {1, set->size()}, look);
        if (watch) watch(WorkStep::kReading, set->size() % kPathsATelling);
        if (textSize != entry_.textSize)
            refuse("its paths are " + std::to_string(textSize) +
                   " bytes of text, the directory says " + std::to_string(entry_.textSize));
    });
}

void Segment::refuse(std::string_view reason) const {
    const auto& entries = file_->segments();
    const auto place = std::find(entries.begin(), entries.end(), entry_) - entries.begin() + 1;
    throw Error(ErrorKind::kDamaged, file_->path(),
                "segment " + std::to_string(place) + ": " + std::string(reason));
}

void Segment::refuseText() const {
    refuse("its paths are more than the " + std::to_string(entry_.textSize) +
           " bytes of text that the directory says");
}

std::unique_ptr<HuffmanPathTree> Segment::openImage() const {
    return translated([this] {
        auto set = HuffmanPathTree::openImage(file_->bytesOf(entry_));
        requireCount(*set);
        requireShortWords(*set);
        return set;
    });
}

std::unique_ptr<HuffmanPathTree> Segment::inflate() const {
    return translated([this] {
        const std::span<const std::byte> mapped = file_->bytesOf(entry_);
        const std::span bytes(reinterpret_cast<const std::uint8_t*>(mapped.data()), mapped.size());
        const auto saved = bytes.subspan(entry_.treeStringSize);
        std::vector<std::uint8_t> form(saved.begin(), saved.end());
        auto set = std::make_unique<HuffmanPathTree>();
        set->deserialize(form, true, maxBodySize(entry_.textSize));
        set->inflateHuffman(treeStringOf(bytes.first(entry_.treeStringSize)));
        requireCount(*set);
        requireShortWords(*set);
        return set;
    });
}

/// A word longer than those that tables hold whole is one of a character that is rarer than one in
/// 10^11 (their number grows as Fibonacci's numbers do), and so in no segment. Where each character
/// has such a word, a code of a few kilobytes makes tables of megabytes.
void Segment::requireShortWords(const HuffmanPathTree& set) const {
    if (!set.codeTables().arrays().longWords.isEmpty()) refuse("its code words are too long");
}

/// The numbers of all segments after this one depend on it.
void Segment::requireCount(const HuffmanPathTree& set) const {
    if (set.size() != entry_.pathCount)
        refuse("it has " + std::to_string(set.size()) + " paths, the directory says " +
               std::to_string(entry_.pathCount));
}

}  // namespace zqpaths
