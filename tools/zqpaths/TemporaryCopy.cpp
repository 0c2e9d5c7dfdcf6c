#include "tools/zqpaths/TemporaryCopy.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/Transfers.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;

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

}  // namespace

FileDescriptor temporaryCopy(int input, const std::string& inputName) {
    const std::string folder = temporaryFolder();
    FileDescriptor copy = unnamedFile(folder);
    const std::string copyName = "a temporary file in " + folder;
    if (!copy.isOpen()) throw systemFailureAt(copyName, errno);
    std::vector<char> buffer(kBufferSize);
    while (const std::size_t count = readSome(input, buffer.data(), buffer.size(), inputName))
        writeAll(copy.number(), buffer.data(), count, copyName);
    return copy;
}

}  // namespace zqpaths
