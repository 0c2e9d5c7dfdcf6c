#include "zqpaths/directory/FileIdentity.hpp"

#include <sys/stat.h>

#include "zqpaths/file/PendingFile.hpp"
#include "zqpaths/file/SystemFile.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {

std::vector<FileIdentity> filesOfSet(const std::string& path) {
    const std::string real = withoutLinks(path);
    std::vector<FileIdentity> files;
    for (const std::string& file : {real, PendingFile::temporaryPathFor(real)})
        if (std::optional<FileIdentity> found = fileAt(file)) files.push_back(*std::move(found));
    return files;
}

std::optional<FileIdentity> fileAt(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return std::nullopt;
    return FileIdentity{status.st_dev, status.st_ino, path.substr(folderLength(path))};
}

}  // namespace zqpaths
