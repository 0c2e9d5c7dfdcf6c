#include "tools/zqpaths/sources/WholeFiles.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <deque>

#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/Transfers.hpp"
#include "zqpaths/file/FileDescriptor.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kBytesACall = std::size_t{1} << 20;
constexpr mode_t kMode = 0666;  // less what the user's mask takes away

FileDescriptor openFile(const std::string& path, int flags) {
    FileDescriptor file(::open(path.c_str(), flags | O_CLOEXEC));
    if (!file.isOpen()) throw systemFailureAt(path, errno);
    return file;
}

bool isSpecialFile(const std::string& path) {
    struct stat file {};
    return ::stat(path.c_str(), &file) == 0 && !S_ISREG(file.st_mode);
}

Failure failureThere(const std::string& path) {
    return failureAt(path, "is there already; --force replaces it");
}

/// A file beside the one that it is to become, gone if it does not.
class FileBeside {
public:
    /// `number` tells those apart that one process makes at a time.
    FileBeside(const std::string& path, std::size_t number)
        : path_(path),
          // A short name of its own, because the name may be as long as names can be.
          temporaryPath_(path.substr(0, path.rfind('/') + 1) + ".zqpaths-" +
                         std::to_string(::getpid()) + "-" + std::to_string(number)),
          file_(::open(temporaryPath_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kMode)) {
        if (!file_.isOpen()) throw systemFailureAt(path_, errno);
    }
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;
    ~FileBeside() {
        if (!temporaryPath_.empty()) ::unlink(temporaryPath_.c_str());
    }

    void write(const std::vector<std::uint8_t>& bytes) {
        writeAll(file_.number(), bytes.data(), bytes.size(), path_);
        if (::fsync(file_.number()) != 0) throw systemFailureAt(path_, errno);
    }

    void takePlace(bool mayReplace) {
        const char* const from = temporaryPath_.c_str();
        const char* const to = path_.c_str();
        const unsigned flags = mayReplace ? 0 : RENAME_NOREPLACE;
        int result = ::renameat2(AT_FDCWD, from, AT_FDCWD, to, flags);
        // Not every file system can look and rename in one step.
        if (result != 0 && (errno == EINVAL || errno == ENOSYS)) {
            if (!mayReplace) requireFree(path_);
            result = ::rename(from, to);
        }
        if (result != 0 && errno == EEXIST) throw failureThere(path_);
        if (result != 0) throw systemFailureAt(path_, errno);
        temporaryPath_.clear();
    }

private:
    const std::string& path_;
    std::string temporaryPath_;
    FileDescriptor file_;
};

}  // namespace

std::vector<std::uint8_t> readWholeFile(const std::string& path) {
    const FileDescriptor file = openFile(path, O_RDONLY);
    std::vector<std::uint8_t> bytes;
    std::size_t size = 0;
    while (true) {
        bytes.resize(size + kBytesACall);
        const std::size_t count = readSome(file.number(), bytes.data() + size, kBytesACall, path);
        if (count == 0) break;
        size += count;
    }
    bytes.resize(size);
    return bytes;
}

void requireFree(const std::string& path) {
    struct stat file {};
    if (::lstat(path.c_str(), &file) == 0 && !isSpecialFile(path)) throw failureThere(path);
}

void writeWholeFiles(const std::vector<WholeFile>& files, bool mayReplace) {
    const DeferredSignals signals;
    std::deque<FileBeside> beside;
    for (const WholeFile& file : files) {
        if (!mayReplace) requireFree(file.path);
        if (isSpecialFile(file.path)) continue;
        beside.emplace_back(file.path, beside.size()).write(file.bytes);
    }
    for (const WholeFile& file : files)
        if (isSpecialFile(file.path))
            writeAll(openFile(file.path, O_WRONLY).number(), file.bytes.data(), file.bytes.size(),
                     file.path);
    for (FileBeside& file : beside) file.takePlace(mayReplace);
}

}  // namespace zqpaths::program
