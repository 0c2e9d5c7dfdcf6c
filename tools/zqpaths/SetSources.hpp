#pragma once
// Sources whose paths are in sets already.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/PathSet.hpp"
#include "tools/zqpaths/PathSource.hpp"

namespace zqpaths {

/// The paths of a set in the order of their numbers, then those of another source.
class ExtendedSetSource final : public PathSource {
public:
    /// Both outlive the source.
    ExtendedSetSource(PathSet& set, PathSource& more) noexcept : set_(set), more_(more) {}

    void visit(const std::function<void(std::string_view path)>& visitor) override;
    std::uint64_t unreadableCount() const noexcept override { return more_.unreadableCount(); }

private:
    PathSet& set_;
    PathSource& more_;
};

/// The paths of saved sets, one set after the other, each path where it is met first. One set is
/// loaded at a time.
class MergedSource final : public PathSource {
public:
    explicit MergedSource(std::vector<std::string> files) noexcept : files_(std::move(files)) {}

    /// Throws Failure as openSet does.
    void visit(const std::function<void(std::string_view path)>& visitor) override;
    std::uint64_t unreadableCount() const noexcept override { return 0; }

private:
    std::vector<std::string> files_;
};

}  // namespace zqpaths
