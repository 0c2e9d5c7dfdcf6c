#include "tools/zqpaths/Transfers.hpp"

#include <unistd.h>

#include <cerrno>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {

std::size_t readSome(int descriptor, void* bytes, std::size_t size, std::string_view place) {
    while (true) {
        const ssize_t count = ::read(descriptor, bytes, size);
        if (count >= 0) return static_cast<std::size_t>(count);
        if (errno != EINTR) throw systemFailureAt(place, errno);
    }
}

void writeAll(int descriptor, const void* bytes, std::size_t size, std::string_view place) {
    const auto* next = static_cast<const char*>(bytes);
    while (size > 0) {
        const ssize_t count = ::write(descriptor, next, size);
        if (count < 0 && errno != EINTR) throw systemFailureAt(place, errno);
        if (count <= 0) continue;
        next += count;
        size -= static_cast<std::size_t>(count);
    }
}

}  // namespace zqpaths
