#pragma once
// The stamp of a directory, as the system tells it.

#include <sys/stat.h>

#include <cstdint>

#include "zqpaths/directory/ScanRecord.hpp"

namespace zqpaths {

inline DirectoryStamp stampOf(const struct stat& status) noexcept {
    const auto nanoseconds = [](const timespec& time) {
        constexpr std::int64_t kASecond = 1'000'000'000;
        return std::int64_t{time.tv_sec} * kASecond + time.tv_nsec;
    };
    return {status.st_dev, status.st_ino, nanoseconds(status.st_mtim), nanoseconds(status.st_ctim)};
}

}  // namespace zqpaths
