#include "zqpaths/directory/FileIdentity.hpp"

#include <sys/stat.h>

#include "zqpaths/file/PendingFile.hpp"
#include "zqpaths/file/SystemFile.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {

std::vector<FileIdentity> filesOfSet(const std::string& path) {
    const std::string real = withoutLinks(path);
    std::vector<FileIdentity> files;
    for (const std::string& file : {real, PendingFile::temporaryPathFor(real)}) {
        struct stat status {};
        if (::lstat(file.c_str(), &status) != 0) continue;
        files.push_back({status.st_dev, status.st_ino, file.substr(folderLength(file))});
    }
    return files;
}

}  // namespace zqpaths
