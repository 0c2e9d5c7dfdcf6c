#include "tools/zqpaths/PathSource.hpp"

#include "tools/zqpaths/DirectorySource.hpp"
#include "tools/zqpaths/ListSource.hpp"

namespace zqpaths {

std::unique_ptr<PathSource> openSource(const SourceOptions& options) {
    if (options.list) return std::make_unique<ListSource>(*options.list, options.nulDelimited);
    return std::make_unique<DirectorySource>(options.directories,
                                             WalkOptions{.follow = options.follow,
                                                         .oneFileSystem = options.oneFileSystem,
                                                         .skipHidden = !options.hidden,
                                                         .jobs = options.jobs});
}

}  // namespace zqpaths
