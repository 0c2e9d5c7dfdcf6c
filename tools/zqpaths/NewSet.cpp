#include "tools/zqpaths/NewSet.hpp"

#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/Figures.hpp"
#include "tools/zqpaths/Messages.hpp"
#include "tools/zqpaths/PathSetClass.hpp"
#include "tools/zqpaths/PrintablePath.hpp"
#include "tools/zqpaths/SetFile.hpp"

namespace zqpaths {

void requireRoomFor(const std::string& file, bool mayReplace) {
    const std::filesystem::path path(file);
    if (!mayReplace && std::filesystem::exists(std::filesystem::symlink_status(path)))
        throw failureAt(file, SetFile::kIsThere);
    const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
    if (::access(folder.c_str(), W_OK | X_OK) != 0) throw systemFailureAt(folder, errno);
}

void saveNewSet(const std::string& file, PathSet& set, bool mayReplace,
                const MessageOptions& messages) {
    SetFile::save(file, kPathSetClass, set.fields(),
                  mayReplace ? SetFile::Existing::kReplace : SetFile::Existing::kRefuse);
    tellSize(file, set, messages);
}

void tellSize(const std::string& file, const PathSet& set, const MessageOptions& messages) {
    if (messages.quiet) return;
    tell(printablePath(file) + " holds " + groupDigits(set.size()) +
         (set.size() == 1 ? " path" : " paths"));
}

}  // namespace zqpaths
