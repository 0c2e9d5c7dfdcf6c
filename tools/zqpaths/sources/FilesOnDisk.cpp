#include "tools/zqpaths/sources/FilesOnDisk.hpp"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "zqpaths/file/FileDescriptor.hpp"

namespace zqpaths::program {
namespace {

/// 0 if there is something, else the system's error.
int lookUp(int directory, const std::string& path) {
    struct stat found {};
    return fstatat(directory, path.c_str(), &found, AT_SYMLINK_NOFOLLOW) == 0 ? 0 : errno;
}

/// Not open if it fails; errno tells why.
FileDescriptor openStep(int directory, const std::string& path) {
    return FileDescriptor(openat(directory, path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

/// lookUp in steps that the system takes as one path.
int lookUpInSteps(const std::string& path) {
    FileDescriptor directory = openStep(AT_FDCWD, path.front() == '/' ? "/" : ".");
    std::size_t begin = 0;
    while (path.size() - begin >= PATH_MAX) {
        const std::size_t separator = path.rfind('/', begin + PATH_MAX - 2);
        if (separator == std::string::npos || separator < begin) return ENAMETOOLONG;
        const std::string step = path.substr(begin, separator + 1 - begin);
        FileDescriptor next = openStep(directory.number(), step);
        if (!next.isOpen()) return errno;
        directory = std::move(next);
        begin = path.find_first_not_of('/', separator);
        if (begin == std::string::npos) return 0;
    }
    return lookUp(directory.number(), path.substr(begin));
}

}  // namespace

bool isOnDisk(const std::string& path) {
    int error = lookUp(AT_FDCWD, path);
    if (error == ENAMETOOLONG) error = lookUpInSteps(path);
    switch (error) {
        case 0:
            return true;
        case ENOENT:
        case ENOTDIR:
        case ENAMETOOLONG:  // a name that no file can have
            return false;
        default:
            throw systemFailureAt(path, error);
    }
}

}  // namespace zqpaths::program
