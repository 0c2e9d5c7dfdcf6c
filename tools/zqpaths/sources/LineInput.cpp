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

bool isStandardInput(const std::string& fileName) {
    return fileName == "-";
}

/// What a regular file has still to give.
std::uint64_t sizeOf(const FileDescriptor& file) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    const off_t begin = std::max<off_t>(::lseek(file.number(), 0, SEEK_CUR), 0);
    return static_cast<std::uint64_t>(std::max<off_t>(status.st_size - begin, 0));
}

}  // namespace

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

LineInput::LineInput(const std::string& fileName, char delimiter)
    : name_(nameOfInput(fileName)),
      delimiter_(delimiter),
      file_(openInput(fileName)),
      size_(sizeOf(file_)) {}

void LineInput::visit(
    const std::function<void(std::string_view line, std::uint64_t number)>& visitor) {
    std::vector<char> buffer(kBufferSize);
    std::size_t heldCount = 0;  // bytes at the front of the buffer: a line without its end
    std::uint64_t number = 0;
    while (true) {
        if (heldCount == buffer.size()) buffer.resize(2 * buffer.size());
        const std::size_t readCount =
            readSome(file_.number(), buffer.data() + heldCount, buffer.size() - heldCount, name_);
        if (readCount == 0) break;

        std::string_view rest(buffer.data(), heldCount + readCount);
        for (std::size_t end = rest.find(delimiter_, heldCount); end != std::string_view::npos;
             end = rest.find(delimiter_)) {
            visitor(rest.substr(0, end), ++number);
            rest.remove_prefix(end + 1);
        }
        heldCount = rest.size();
        readSize_ += readCount;
        std::memmove(buffer.data(), rest.data(), heldCount);
    }
    if (heldCount > 0) visitor({buffer.data(), heldCount}, ++number);
}

std::optional<double> LineInput::partRead() const noexcept {
    if (size_ == 0) return std::nullopt;
    return std::min(1.0, static_cast<double>(readSize_) / static_cast<double>(size_));
}

}  // namespace zqpaths::program
