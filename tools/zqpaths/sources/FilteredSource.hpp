#pragma once
// FilteredSource gives of another source's paths those that --exclude and --max-depth leave.

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"
#include "zqpaths/exclusion/ExcludedPaths.hpp"
#include "zqpaths/search/PathScope.hpp"

namespace zqpaths::program {

class FilteredSource final : public PathSource {
public:
    /// Throws Error kWrongUse for patterns beyond all bounds.
    FilteredSource(std::unique_ptr<PathSource> source, const WalkOptions& filters)
        : source_(std::move(source)), excluded_(filters.exclude), scope_("", filters.maxDepth) {}

    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override;
    std::optional<double> partGiven() const noexcept override { return source_->partGiven(); }

private:
    std::unique_ptr<PathSource> source_;
    ExcludedPaths excluded_;
    PathScope scope_;
};

}  // namespace zqpaths::program
