#include "tools/zqpaths/SavedSet.hpp"

#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathSetClass.hpp"
#include "tools/zqpaths/SetFile.hpp"

namespace zqpaths {

PathSet openSet(const std::string& file) {
    SetFile::Content content = SetFile::load(file);
    if (content.className != kPathSetClass)
        throw Failure(ExitStatus::kFailed,
                      file + ": holds an object of " + content.className + ", no set of paths");
    try {
        return PathSet::restored(std::move(content.fields));
    } catch (const Failure& failure) {
        throw Failure(failure.status(), file + ": " + failure.what());
    }
}

}  // namespace zqpaths
