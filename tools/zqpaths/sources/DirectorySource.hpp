#pragma once
// DirectorySource gives what is in a directory tree, or in a part of it, in the order of
// DirectoryWalk.

#include <functional>
#include <optional>
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
    /// The files of `set`, as they are when the paths are visited, are left out. Each directory
    /// that cannot be read is told to `onUnreadable`, which may be empty. Throws Failure kFailed if
    /// `directory` is none.
    DirectorySource(std::string directory, WalkOptions options, std::string set,
                    UnreadableVisitor onUnreadable, std::optional<WalkPart> part = {});

    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override;
    std::vector<EncodedScan> takeScans() override { return std::move(scans_); }

private:
    std::string directory_;
    WalkOptions options_;
    std::string set_;
    UnreadableVisitor onUnreadable_;
    std::optional<WalkPart> part_;    // none for the whole, which is recorded
    std::vector<EncodedScan> scans_;  // one, once the whole directory has been read
};

}  // namespace zqpaths::program
