#include "tools/zqpaths/sets/GrowingSet.hpp"

#include <utility>

#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {

GrowingSet::GrowingSet(const std::string& file, PathSetWriter::Mode mode, std::string work,
                       const MessageOptions& messages, std::optional<std::uint64_t> total,
                       PathSetWriter::Form form)
    : file_(file), messages_(messages), progress_(std::move(work), messages, total) {
    nameWhatIsRead(printablePath(file));
    const DeferredSignals::Wait wait;  // for another writer
    writer_.emplace(file, mode, form);
}

void GrowingSet::save() {
    saveQuietly();
    tellSize();
}

void GrowingSet::saveQuietly() {
    DeferredSignals::throwIfOneCame();
    writer_->commit();
}

void GrowingSet::tellSize() const {
    if (messages_.quiet) return;
    const std::uint64_t size = writer_->size();
    tell(printablePath(file_) + " holds " + groupDigits(size) + (size == 1 ? " path" : " paths"));
}

}  // namespace zqpaths::program
