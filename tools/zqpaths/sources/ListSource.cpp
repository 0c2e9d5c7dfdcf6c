#include "tools/zqpaths/sources/ListSource.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sources/Transfers.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;

bool isStandardInput(const std::string& fileName) {
    return fileName == "-";
}

std::string nameOf(const std::string& fileName) {
    return isStandardInput(fileName) ? "standard input" : fileName;
}

/// A named pipe is opened before somebody writes into it: the wait is that for bytes.
FileDescriptor openList(const std::string& fileName, const std::string& name) {
    FileDescriptor file(isStandardInput(fileName)
                            ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                            : ::open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) throw systemFailureAt(name, errno);
    if (S_ISDIR(status.st_mode)) throw systemFailureAt(name, EISDIR);
    return file;
}

/// What a regular file has still to give; of others that is not known.
std::uint64_t sizeOf(const FileDescriptor& file) {
    struct stat status {};
    if (::fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)) return 0;
    const off_t begin = std::max<off_t>(::lseek(file.number(), 0, SEEK_CUR), 0);
    return static_cast<std::uint64_t>(std::max<off_t>(status.st_size - begin, 0));
}

}  // namespace

ListSource::ListSource(const std::string& fileName, bool nulDelimited)
    : name_(nameOf(fileName)),
      delimiter_(nulDelimited ? '\0' : '\n'),
      file_(openList(fileName, name_)),
      size_(sizeOf(file_)) {}

std::string ListSource::printableName(const std::string& fileName) {
    return printablePath(nameOf(fileName));
}

std::optional<double> ListSource::partGiven() const noexcept {
    if (size_ == 0) return std::nullopt;
    return std::min(1.0, static_cast<double>(givenSize_) / static_cast<double>(size_));
}

SourceReport ListSource::visit(const std::function<void(std::string_view path)>& visitor) {
    std::vector<char> buffer(kBufferSize);
    std::size_t heldCount = 0;  // bytes at the front of the buffer: a path without its end
    std::uint64_t number = 0;
    const auto give = [&](std::string_view path) {
        requirePath(path, ++number);
        visitor(path);
    };
    while (true) {
        if (heldCount == buffer.size()) buffer.resize(2 * buffer.size());
        const std::size_t readCount =
            readSome(file_.number(), buffer.data() + heldCount, buffer.size() - heldCount, name_);
        if (readCount == 0) break;

        std::string_view rest(buffer.data(), heldCount + readCount);
        for (std::size_t end = rest.find(delimiter_, heldCount); end != std::string_view::npos;
             end = rest.find(delimiter_)) {
            give(rest.substr(0, end));
            rest.remove_prefix(end + 1);
        }
        heldCount = rest.size();
        givenSize_ += readCount;
        std::memmove(buffer.data(), rest.data(), heldCount);
    }
    if (heldCount > 0) give({buffer.data(), heldCount});
    return {};
}

void ListSource::requirePath(std::string_view path, std::uint64_t number) const {
    const auto refuse = [&](const char* reason) {
        const char* const unit = delimiter_ == '\n' ? "line " : "path ";
        throw failureAt(name_, unit + std::to_string(number) + reason);
    };
    if (path.empty()) refuse(" is empty");
    if (path.find('\0') != std::string_view::npos)
        refuse(" holds a NUL, which no path can; -0 is for paths that end with one");
}

}  // namespace zqpaths::program
