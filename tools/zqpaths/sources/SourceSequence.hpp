#pragma once
// SourceSequence gives the paths of several sources, one after the other.

#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zqpaths/sources/PathSource.hpp"

namespace zqpaths::program {

class SourceSequence final : public PathSource {
public:
    explicit SourceSequence(std::vector<std::unique_ptr<PathSource>> sources)
        : sources_(std::move(sources)) {}

    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override {
        SourceReport report;
        for (const std::unique_ptr<PathSource>& source : sources_) report += source->visit(visitor);
        return report;
    }

    std::vector<EncodedScan> takeScans() override {
        std::vector<EncodedScan> scans;
        for (const std::unique_ptr<PathSource>& source : sources_)
            for (EncodedScan& scan : source->takeScans()) scans.push_back(std::move(scan));
        return scans;
    }

private:
    std::vector<std::unique_ptr<PathSource>> sources_;
};

}  // namespace zqpaths::program
