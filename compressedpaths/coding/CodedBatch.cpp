#include "compressedpaths/coding/CodedBatch.hpp"

#include <algorithm>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {

CodedBatch::CodedBatch(const HuffmanPathTree& set) : tables_(&set.codeTables()) {}

void CodedBatch::beginEntry(std::size_t sharedComponents) {
    entries_.push({sharedComponents, 0, 0, 0, 0});
}

void CodedBatch::appendFolder(std::u16string_view component) {
    Entry& entry = entries_.at(entries_.size() - 1);
    const std::size_t before = names_.size();
    maxCodeBytes_ = std::max(maxCodeBytes_, tables_->appendCode(component, names_));
    ++entry.folderCount;
    entry.folderSize += names_.size() - before;
}

void CodedBatch::appendFile(std::u16string_view name) {
    Entry& entry = entries_.at(entries_.size() - 1);
    const std::size_t before = names_.size();
    maxCodeBytes_ = std::max(maxCodeBytes_, tables_->appendCode(name, names_));
    ++entry.fileCount;
    entry.fileSize += names_.size() - before;
}

}  // namespace compressedpaths
