#include "tools/zqpaths/TemporaryCopy.hpp"

#include <fcntl.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <span>
#include <vector>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;

/// With errno of the last call.
Failure failureIn(const std::string& folder) {
    return systemFailureAt("a temporary file in " + folder, errno);
}

std::string temporaryFolder() {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment
    const char* const folder = std::getenv("TMPDIR");
    return folder != nullptr && *folder != '\0' ? folder : "/tmp";
}

FileDescriptor unnamedFile(const std::string& folder) {
    FileDescriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (file.isOpen() || (errno != EOPNOTSUPP && errno != EISDIR)) return file;
    // The file system has no files without a name.
    std::string name = folder + "/zqpaths-XXXXXX";
    file = FileDescriptor(::mkostemp(name.data(), O_CLOEXEC));
    if (file.isOpen()) ::unlink(name.c_str());
    return file;
}

std::size_t readSome(int input, std::span<char> bytes, const std::string& inputName) {
    while (true) {
        const ssize_t count = ::read(input, bytes.data(), bytes.size());
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) throw systemFailureAt(inputName, errno);
    }
}

void writeAll(int output, std::span<const char> bytes, const std::string& folder) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(output, bytes.data(), bytes.size());
        if (count >= 0)
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            throw failureIn(folder);
    }
}

}  // namespace

FileDescriptor temporaryCopy(int input, const std::string& inputName) {
    const std::string folder = temporaryFolder();
    FileDescriptor copy = unnamedFile(folder);
    if (!copy.isOpen()) throw failureIn(folder);
    std::vector<char> buffer(kBufferSize);
    while (const std::size_t count = readSome(input, buffer, inputName))
        writeAll(copy.number(), std::span(buffer).first(count), folder);
    return copy;
}

}  // namespace zqpaths
