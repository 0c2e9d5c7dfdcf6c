#include "zqpaths/file/FileLock.hpp"

#include <sys/sysmacros.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <thread>

#include "zqpaths/Error.hpp"

namespace zqpaths {
namespace {

using Clock = std::chrono::steady_clock;

/// Waits for the lock until then; asks seldom when it takes long. True if it has the lock.
bool lockBy(SystemFile& file, Clock::time_point latest) {
    constexpr std::chrono::milliseconds kMostPause{50};
    std::chrono::milliseconds pause{1};
    while (!file.tryLock()) {
        if (Clock::now() >= latest) return false;
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, kMostPause);
    }
    return true;
}

/// The device and number of a file as /proc/locks has them: "fe:00:4711".
std::string placeOf(const struct stat& status) {
    std::ostringstream place;
    constexpr int kDigits = 2;
    for (const unsigned part : {major(status.st_dev), minor(status.st_dev)}) {
        place.width(kDigits);
        place.fill('0');
        place << std::hex << part << ':';
    }
    place << std::dec << status.st_ino;
    return place.str();
}

/// The process of a line "3: FLOCK  ADVISORY  WRITE 4711 fe:00:12 0 EOF" that is about the file at
/// `place`; 0 for any other line, also for "3: -> FLOCK ...", which is about one that waits.
long processIn(const std::string& line, const std::string& place) {
    std::istringstream words(line);
    std::string number;
    std::string kind;
    std::string strength;
    std::string access;
    std::string locked;
    long process = 0;
    words >> number >> kind >> strength >> access >> process >> locked;
    return kind == "FLOCK" && locked == place ? process : 0;
}

}  // namespace

std::optional<SystemFile> openLocked(const std::string& path, int flags, const std::string& name,
                                     std::chrono::milliseconds wait) {
    const Clock::time_point latest = Clock::now() + wait;
    while (true) {
        SystemFile file = SystemFile::tryOpen(path, flags, name);
        if (!file.isOpen() && errno == ENOENT) return std::nullopt;
        if (!file.isOpen()) throw systemError(name, errno);
        if (!lockBy(file, latest))
            throw Error(ErrorKind::kHeld, name, "is held by " + holderOf(file));
        if (file.isAt(path)) return file;
    }
}

std::string holderOf(const SystemFile& file) {
    const std::string place = placeOf(file.status());
    long process = 0;
    std::ifstream locks("/proc/locks");
    for (std::string line; process <= 0 && std::getline(locks, line);)
        process = processIn(line, place);
    if (process <= 0) return "another program";
    std::string program;
    std::getline(std::ifstream("/proc/" + std::to_string(process) + "/comm"), program);
    return (program.empty() ? "a program" : program) + " (process " + std::to_string(process) + ")";
}

}  // namespace zqpaths
