#include "tools/zqpaths/sources/WholeFiles.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>

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

bool isNoRegularFile(const std::string& path) {
    struct stat file {};
    return ::stat(path.c_str(), &file) == 0 && !S_ISREG(file.st_mode);
}

/// A file beside the one that it is to become, gone if it does not.
class FileBeside {
public:
    explicit FileBeside(const std::string& path)
        : path_(path),
          // A short name of its own, because the name may be as long as names can be.
          temporaryPath_(path.substr(0, path.rfind('/') + 1) + ".zqpaths-" +
                         std::to_string(::getpid())),
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

    void takePlace() {
        if (::rename(temporaryPath_.c_str(), path_.c_str()) != 0)
            throw systemFailureAt(path_, errno);
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

void writeWholeFile(const std::string& path, const std::vector<std::uint8_t>& bytes) {
    if (isNoRegularFile(path)) {
        writeAll(openFile(path, O_WRONLY).number(), bytes.data(), bytes.size(), path);
        return;
    }
    const DeferredSignals signals;
    FileBeside file(path);
    file.write(bytes);
    file.takePlace();
}

}  // namespace zqpaths::program
