#include "tools/zqpaths/sources/WholeFiles.hpp"

#include <fcntl.h>

#include <cerrno>
#include <cstddef>
#include <deque>

#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/FileBeside.hpp"
#include "tools/zqpaths/sources/Transfers.hpp"
#include "zqpaths/file/FileDescriptor.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kBytesACall = std::size_t{1} << 20;

FileDescriptor openFile(const std::string& path, int flags) {
    FileDescriptor file(::open(path.c_str(), flags | O_CLOEXEC));
    if (!file.isOpen()) throw systemFailureAt(path, errno);
    return file;
}

/// Gives all files their places, on the device. If one cannot have its own, none has that replaced
/// nothing.
void takePlaces(std::deque<FileBeside>& files, bool mayReplace) {
    std::size_t taken = 0;
    try {
        for (; taken < files.size(); ++taken) files[taken].takePlace(mayReplace);
        for (const FileBeside& file : files) file.syncPlace();
    } catch (...) {
        while (!mayReplace && taken > 0) files[--taken].takeBack();
        throw;
    }
}

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

void writeWholeFiles(const std::vector<WholeFile>& files, bool mayReplace) {
    const DeferredSignals signals;
    std::deque<FileBeside> beside;
    for (const WholeFile& file : files) {
        if (!mayReplace) requireFree(file.path);
        if (isSpecialFile(file.path)) continue;
        FileBeside& made = beside.emplace_back(file.path, beside.size());
        writeAll(made.descriptor(), file.bytes.data(), file.bytes.size(), file.path);
        made.sync();
    }
    for (const WholeFile& file : files)
        if (isSpecialFile(file.path))
            writeAll(openFile(file.path, O_WRONLY).number(), file.bytes.data(), file.bytes.size(),
                     file.path);
    takePlaces(beside, mayReplace);
}

}  // namespace zqpaths::program
