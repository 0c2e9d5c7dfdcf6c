#include "zqpaths/file/SetFileWriter.hpp"

#include "zqpaths/file/SetFileChange.hpp"

namespace zqpaths {
namespace {

std::unique_ptr<SetFileChange> changeOf(const std::string& path, SetFileWriter::Mode mode) {
    switch (mode) {
        case SetFileWriter::Mode::kReplace:
            return replacedSetFile(path);
        case SetFileWriter::Mode::kAppend:
            if (auto added = addedToManifest(path)) return added;
            return appendedSetFile(path);
        case SetFileWriter::Mode::kCreate:
            break;
    }
    return createdSetFile(path);
}

}  // namespace

SetFileWriter::SetFileWriter(const std::string& path, Mode mode) : change_(changeOf(path, mode)) {}

SetFileWriter::~SetFileWriter() = default;

const std::vector<SegmentEntry>& SetFileWriter::segments() const noexcept {
    return change_->body().directory().segments;
}

std::uint64_t SetFileWriter::pathsBefore() const noexcept {
    return change_->pathsBefore();
}

const std::shared_ptr<const SetFile>& SetFileWriter::committed() const noexcept {
    return change_->committed();
}

void SetFileWriter::dropFrom(std::size_t first) noexcept {
    change_->body().dropFrom(first);
}

void SetFileWriter::append(const SegmentBytes& segment) {
    change_->body().append(segment);
}

void SetFileWriter::putGone(const BlockBytes& block) {
    change_->body().putGone(block);
}

void SetFileWriter::putScans(const BlockBytes& block) {
    change_->body().putScans(block);
}

void SetFileWriter::commit() {
    change_->commit();
}

}  // namespace zqpaths
