#include "tools/zqpaths/RawPiece.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <vector>

#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/FileDescriptor.hpp"
#include "tools/zqpaths/NewFile.hpp"
#include "tools/zqpaths/StoredArray.hpp"
#include "tools/zqpaths/Transfers.hpp"

namespace zqpaths {
namespace {

constexpr std::uint64_t kBytesACall = std::uint64_t{1} << 20;

FileDescriptor openFile(const std::string& path, const std::string& shownPath, int flags) {
    const int opened = open(path.c_str(), flags | O_CLOEXEC);
    if (opened < 0) throw systemFailureAt(shownPath, errno);
    return FileDescriptor(opened);
}

void writeElements(const FileDescriptor& file, const kxArray* array, const std::string& path) {
    const std::uint64_t size = formOf(array).value().byteCount();
    for (std::uint64_t offset = 0; offset < size; offset += kBytesACall) {
        const std::vector<std::uint8_t> bytes =
            storedBytes(array, offset, std::min(kBytesACall, size - offset));
        writeAll(file.number(), bytes.data(), bytes.size(), path);
        DeferredSignals::throwIfOneCame();
    }
}

/// A pipe or a device, which stays what it is.
bool isNoRegularFile(const std::string& path) {
    struct stat file {};
    return stat(path.c_str(), &file) == 0 && !S_ISREG(file.st_mode);
}

std::vector<std::uint8_t> readAll(const std::string& path) {
    const FileDescriptor file = openFile(path, path, O_RDONLY);
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

korvex::Array arrayOf(const std::vector<std::uint8_t>& bytes, const ArrayForm& form) {
    korvex::Array array = makeArray(form);
    restoreBytes(bytes, 0, array.get());
    return array;
}

}  // namespace

void writeRawPiece(const std::string& path, const kxArray* array) {
    if (isNoRegularFile(path)) {
        writeElements(openFile(path, path, O_WRONLY), array, path);
        return;
    }
    const DeferredSignals signals;
    NewFile file(path);
    {
        const FileDescriptor opened = openFile(file.temporaryPath(), path, O_WRONLY);
        writeElements(opened, array, path);
        if (fsync(opened.number()) != 0) throw systemFailureAt(path, errno);
    }
    file.publishInPlace();
}

korvex::Array readRawCharacters(const std::string& path) {
    const std::vector<std::uint8_t> bytes = readAll(path);
    if (bytes.size() % sizeof(char16_t) != 0)
        throw failureAt(path, "half a character at byte " + std::to_string(bytes.size() - 1),
                        ExitStatus::kDamaged);
    return arrayOf(bytes, {"char", 1, bytes.size() / sizeof(char16_t)});
}

korvex::Array readRawBytes(const std::string& path) {
    const std::vector<std::uint8_t> bytes = readAll(path);
    return arrayOf(bytes, {"uint8", bytes.size(), 1});
}

}  // namespace zqpaths
