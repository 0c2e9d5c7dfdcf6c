#pragma once
// DirectorySource gives what is in directory trees, one tree after the other, each in the order of
// DirectoryWalk.

#include <cstdint>
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
    /// Throws Failure kFailed if one of `directories` is none.
    DirectorySource(std::vector<std::string> directories, const WalkOptions& options);

    void visit(const std::function<void(std::string_view path)>& visitor) override;
    std::vector<EncodedScan> takeScans() override { return std::move(scans_); }
    std::uint64_t unreadableCount() const noexcept override { return unreadableCount_; }

private:
    std::vector<std::string> directories_;
    WalkOptions options_;
    std::vector<EncodedScan> scans_;
    std::uint64_t unreadableCount_ = 0;
};

}  // namespace zqpaths::program
