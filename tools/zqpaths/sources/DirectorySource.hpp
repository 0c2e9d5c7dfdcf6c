#pragma once
// DirectorySource gives what is in a directory tree, in the order of DirectoryWalk.

#include <functional>
#include <string>
#include <string_view>

#include "tools/zqpaths/sources/PathSource.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"

namespace zqpaths::program {

class DirectorySource final : public PathSource {
public:
    /// The files of `set`, as they are when the paths are visited, are left out. With `isVerbose`
    /// each directory that cannot be read is told. Throws Failure kFailed if `directory` is none.
    DirectorySource(std::string directory, WalkOptions options, std::string set, bool isVerbose);

    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override;

private:
    std::string directory_;
    WalkOptions options_;
    std::string set_;
    bool isVerbose_;
};

}  // namespace zqpaths::program
