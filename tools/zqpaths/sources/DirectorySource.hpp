#pragma once
// DirectorySource gives what is in a directory tree, in the order of DirectoryWalk.

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zqpaths/sources/PathSource.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"

namespace zqpaths::program {

/// Whether there is a directory of this name.
bool isDirectory(const std::string& path);

/// Throws Failure kFailed if there is no directory of this name.
void requireDirectory(const std::string& path);

class DirectorySource final : public PathSource {
public:
    /// The files of `set`, as they are when the paths are visited, are left out. With `isVerbose`
    /// each directory that cannot be read is told. Throws Failure kFailed if `directory` is none.
    DirectorySource(std::string directory, WalkOptions options, std::string set, bool isVerbose);

    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override;
    std::vector<EncodedScan> takeScans() override { return std::move(scans_); }

private:
    std::string directory_;
    WalkOptions options_;
    std::string set_;
    bool isVerbose_;
    std::vector<EncodedScan> scans_;  // one, once the directory has been read
};

}  // namespace zqpaths::program
