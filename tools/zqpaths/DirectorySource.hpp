#pragma once
// DirectorySource gives what is in directory trees, one tree after the other, each in the order of
// DirectoryWalk.

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/DirectoryWalk.hpp"
#include "tools/zqpaths/PathSource.hpp"

namespace zqpaths {

class DirectorySource final : public PathSource {
public:
    /// Throws Failure kFailed if one of `directories` is none.
    DirectorySource(std::vector<std::string> directories, const WalkOptions& options);

    /// Walks the trees as they are by then.
    void visit(const std::function<void(std::string_view path)>& visitor) override;
    std::uint64_t unreadableCount() const noexcept override { return unreadableCount_; }

private:
    void tell(std::string_view path, std::string_view reason);

    std::vector<std::string> directories_;
    WalkOptions options_;
    std::uint64_t unreadableCount_ = 0;
    std::set<std::string, std::less<>> told_;  // each is told once, not at every visit
};

}  // namespace zqpaths
