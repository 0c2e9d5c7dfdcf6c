#include "tools/zqpaths/sets/GrowingSet.hpp"

#include <cstddef>
#include <utility>
#include <vector>

#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

// Measured with the lists that bench/RESULTS.md names. Most paths are coded while others are read.
struct GrowingPhase {
    enum : std::size_t { kReading, kCoding, kWriting };
};
std::vector<WorkPhase> growingPhases() {
    return {{"reading", WorkUnit::kPaths, 5},
            {"coding", WorkUnit::kPaths, 4},
            {"writing", WorkUnit::kPaths, 1}};
}
std::vector<WorkPhase> phasesOfCopying() {
    return {{"copying", WorkUnit::kBytes, 3}, {"writing", WorkUnit::kBytes, 2}};
}

}  // namespace

void tellSizeOfSet(const std::string& file, std::uint64_t size) {
    tell(printablePath(file) + " holds " + groupDigits(size) + (size == 1 ? " path" : " paths"));
}

GrowingSet::GrowingSet(const std::string& file, PathSetWriter::Mode mode, std::string work,
                       const MessageOptions& messages, std::optional<std::uint64_t> total,
                       PathSetWriter::Form form)
    : GrowingSet(file, mode, std::move(work), messages, form, growingPhases()) {
    if (total) progress_.expect(*total);
}

GrowingSet::GrowingSet(const std::string& file, PathSetWriter::Mode mode, std::string work,
                       const MessageOptions& messages, Copies copies)
    : GrowingSet(file, mode, std::move(work), messages, PathSetWriter::Form::kImage,
                 phasesOfCopying()) {
    progress_.expect(copies.byteCount);
}

GrowingSet::GrowingSet(const std::string& file, PathSetWriter::Mode mode, std::string work,
                       const MessageOptions& messages, PathSetWriter::Form form,
                       std::vector<WorkPhase> phases)
    : file_(file),
      messages_(messages),
      lastPhase_(phases.size() - 1),
      progress_(std::move(work), std::move(phases), messages) {
    nameWhatIsRead(printablePath(file));
    const DeferredSignals::Wait wait;  // for another writer
    writer_.emplace(file, mode, form);
    sizeBefore_ = writer_->size();
    writer_->watch([this](WorkStep step, std::uint64_t items) {
        if (step == WorkStep::kCoding) progress_.advancePhase(GrowingPhase::kCoding, items);
        if (step == WorkStep::kSumming) progress_.advance(items);
        if (step == WorkStep::kSyncing) progress_.begin(lastPhase_);
    });
}

void GrowingSet::save() {
    saveQuietly();
    tellSize();
}

void GrowingSet::saveQuietly() {
    DeferredSignals::throwIfOneCame();
    if (lastPhase_ > GrowingPhase::kCoding)
        progress_.begin(GrowingPhase::kCoding, writer_->size() - sizeBefore_);
    writer_->commit();
}

void GrowingSet::tellSize() const {
    if (!messages_.quiet) tellSizeOfSet(file_, writer_->size());
}

}  // namespace zqpaths::program
