#include "tools/zqpaths/sources/LineInput.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/Transfers.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;

/// What a regular file has still to give, of a range.
std::uint64_t sizeOf(const FileDescriptor& file, ByteRange range) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    const off_t place = std::max<off_t>(::lseek(file.number(), 0, SEEK_CUR), 0);
    const std::uint64_t begin = std::max(range.begin, static_cast<std::uint64_t>(place));
    const std::uint64_t end = std::min(range.end, static_cast<std::uint64_t>(status.st_size));
    return end - std::min(begin, end);
}

}  // namespace

bool isStandardInput(const std::string& fileName) {
    return fileName == "-";
}

std::string nameOfInput(const std::string& fileName) {
    return isStandardInput(fileName) ? "standard input" : fileName;
}

FileDescriptor openInput(const std::string& fileName) {
    FileDescriptor file(isStandardInput(fileName)
                            ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                            : ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0)
        throw systemFailureAt(nameOfInput(fileName), errno);
    if (S_ISDIR(status.st_mode)) throw systemFailureAt(nameOfInput(fileName), EISDIR);
    return file;
}

LineInput::LineInput(const std::string& fileName, char delimiter, ByteRange range)
    : name_(nameOfInput(fileName)),
      delimiter_(delimiter),
      file_(openInput(fileName)),
      range_(range),
      size_(sizeOf(file_, range)) {
    if (range.begin > 0) goTo(range.begin);
}

/// Goes to the first line that begins at or after a byte that is not the first.
void LineInput::goTo(std::uint64_t begin) {
    const auto seek = [this](std::uint64_t offset) {
        if (::lseek(file_.number(), static_cast<off_t>(offset), SEEK_SET) < 0)
            throw systemFailureAt(name_, errno);
    };
    // The line that begins there comes after a delimiter, and after an empty line if that comes
    // after another, or after nothing.
    std::uint64_t offset = begin - std::min<std::uint64_t>(begin, 2);
    seek(offset);
    std::vector<char> buffer(kBufferSize);
    for (char before = delimiter_; offset < range_.end;) {
        const std::size_t count = readSome(file_.number(), buffer.data(), buffer.size(), name_);
        if (count == 0) break;
        for (std::size_t i = 0; i < count; before = buffer[i++]) {
            if (++offset < begin || buffer[i] != delimiter_) continue;
            lineBegin_ = offset;
            isAfterGap_ = before == delimiter_;
            return seek(offset);
        }
    }
    lineBegin_ = range_.end;
}

void LineInput::visit(const std::function<void(std::string_view line)>& visitor) {
    std::vector<char> buffer(kBufferSize);
    std::size_t heldCount = 0;  // bytes at the front of the buffer: a line without its end
    while (lineBegin_ < range_.end) {
        if (heldCount == buffer.size()) buffer.resize(2 * buffer.size());
        const std::size_t readCount =
            readSome(file_.number(), buffer.data() + heldCount, buffer.size() - heldCount, name_);
        if (readCount == 0) break;

        std::string_view rest(buffer.data(), heldCount + readCount);
        for (std::size_t end = rest.find(delimiter_, heldCount);
             end != std::string_view::npos && lineBegin_ < range_.end;
             end = rest.find(delimiter_)) {
            ++lineNumber_;
            visitor(rest.substr(0, end));
            rest.remove_prefix(end + 1);
            lineBegin_ += end + 1;
        }
        heldCount = rest.size();
        readSize_ += readCount;
        std::memmove(buffer.data(), rest.data(), heldCount);
    }
    if (heldCount == 0 || lineBegin_ >= range_.end) return;
    ++lineNumber_;
    visitor({buffer.data(), heldCount});
}

std::string LineInput::place(std::string_view unit) const {
    if (range_.begin == 0) return std::string(unit) + ' ' + std::to_string(lineNumber_);
    return "the " + std::string(unit) + " at byte " + std::to_string(lineBegin_);
}

std::optional<double> LineInput::partRead() const noexcept {
    if (size_ == 0) return std::nullopt;
    return std::min(1.0, static_cast<double>(readSize_) / static_cast<double>(size_));
}

}  // namespace zqpaths::program
