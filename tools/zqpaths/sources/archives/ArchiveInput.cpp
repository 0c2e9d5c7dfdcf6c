#include "tools/zqpaths/sources/archives/ArchiveInput.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "tools/zqpaths/sources/LineInput.hpp"
#include "tools/zqpaths/sources/Transfers.hpp"

namespace zqpaths::program {
namespace {

/// A header of a zip has less than 200,000 bytes, so that it lies in two blocks at most.
constexpr std::size_t kBlockSize = std::size_t{1} << 18;

}  // namespace

ArchiveInput::ArchiveInput(const std::string& fileName)
    : name_(nameOfInput(fileName)), file_(openInput(fileName)) {
    struct stat status {};
    const bool isFromItsBegin = ::lseek(file_.number(), 0, SEEK_CUR) == 0;
    if (::fstat(file_.number(), &status) == 0 && S_ISREG(status.st_mode) && isFromItsBegin)
        fileSize_ = static_cast<std::uint64_t>(status.st_size);
}

std::string_view ArchiveInput::nextBlock() {
    Block& next = lastButOne_;
    const std::size_t sizeBefore = next.bytes.size();
    next.bytes.resize(std::max(sizeBefore, kBlockSize));
    std::size_t size = 0;
    while (size < kBlockSize) {
        const std::size_t count =
            readSome(file_.number(), next.bytes.data() + size, kBlockSize - size, name_);
        if (count == 0) break;
        size += count;
    }
    if (size == 0) {
        next.bytes.resize(sizeBefore);  // both blocks stay what they are
        return {};
    }
    next.begin = position_;
    next.bytes.resize(size);
    position_ += size;
    std::swap(last_, lastButOne_);
    return {last_.bytes.data(), size};
}

std::uint64_t ArchiveInput::skip(std::uint64_t count) noexcept {
    if (position_ >= fileSize_) return 0;
    const std::uint64_t skipped = std::min(count, fileSize_ - position_);
    if (::lseek(file_.number(), static_cast<off_t>(skipped), SEEK_CUR) < 0) return 0;
    position_ += skipped;
    return skipped;
}

std::string ArchiveInput::bytesBetween(std::uint64_t begin, std::uint64_t end) const {
    std::string bytes;
    std::uint64_t next = begin;
    for (const Block* block : {&lastButOne_, &last_}) {
        const std::uint64_t blockEnd = block->begin + block->bytes.size();
        if (block->begin >= end || blockEnd <= next) continue;
        // What is missing before the block leaves nothing in a row.
        if (block->begin > next) bytes.clear();
        next = std::max(next, block->begin);
        bytes.append(block->bytes.data() + (next - block->begin), std::min(end, blockEnd) - next);
        next = blockEnd;
    }
    return bytes;
}

}  // namespace zqpaths::program
