#include "zqpaths/set/OpenedPart.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace zqpaths {
namespace {

[[noreturn]] void refuse(const SetFile& file, const std::string& reason) {
    throw Error(ErrorKind::kDamaged, file.path(), reason);
}

}  // namespace

GonePaths gonePathsOf(const SetFile& file) noexcept {
    const std::optional<BlockEntry>& block = file.state().directory.gone;
    return {file.bytesOf(block), block ? block->count : 0, file.pathCount()};
}

OpenedPart::OpenedPart(std::shared_ptr<const SetFile> file, const SetPart& part)
    : file_(std::move(file)),
      gone_(gonePathsOf(*file_)),
      firstNumber_(part.firstNumber),
      pathCount_(part.row.pathCount) {
    const std::vector<SegmentEntry>& entries = file_->segments();
    const std::uint64_t first = part.row.firstSegment;
    const std::uint64_t count = part.row.segmentCount;
    if (first > entries.size() || count > entries.size() - first)
        refuse(*file_, "has " + std::to_string(entries.size()) + " segments, the set wants " +
                           std::to_string(count) + " after " + std::to_string(first));
    for (std::uint64_t i = 0; i < first; ++i) firstInFile_ += entries[i].pathCount;
    std::uint64_t next = firstNumber_;
    for (std::uint64_t i = first; i < first + count; ++i) {
        segments_.emplace_back(file_, entries[i], next);
        next += entries[i].pathCount;
    }
    if (next - firstNumber_ != pathCount_)
        refuse(*file_, "has " + std::to_string(next - firstNumber_) +
                           " paths there, the set wants " + std::to_string(pathCount_));
    goneBefore_ = gone_.countBelow(firstInFile_);
}

const Segment& OpenedPart::segmentOf(std::uint64_t number) const noexcept {
    return *std::partition_point(
        segments_.begin(), segments_.end(),
        [number](const Segment& segment) { return segment.lastNumber() < number; });
}

std::uint64_t OpenedPart::goneBelow(std::uint64_t number) const noexcept {
    const std::uint64_t below = gone_.countBelow(inFile(number));
    return below - std::min(below, goneBefore_);  // in a damaged set, too
}

std::uint64_t OpenedPart::goneNumber(std::uint64_t place) const {
    return file_->naming([&] { return inSet(gone_.goneNumber(goneBefore_ + place)); });
}

std::uint64_t OpenedPart::presentNumber(std::uint64_t place) const {
    const std::uint64_t presentBefore = firstInFile_ - 1 - goneBefore_;
    return file_->naming([&] { return inSet(gone_.presentNumber(presentBefore + place)); });
}

std::uint64_t OpenedPart::inSet(std::uint64_t numberInFile) const {
    if (numberInFile < firstInFile_ || numberInFile - firstInFile_ >= pathCount_)
        throw Error(ErrorKind::kDamaged, {}, "the gone paths have numbers that cannot be");
    return numberInFile - firstInFile_ + firstNumber_;
}

}  // namespace zqpaths
