#include "tools/zqpaths/sources/FilteredSource.hpp"

namespace zqpaths::program {

SourceReport FilteredSource::visit(const std::function<void(std::string_view path)>& visitor) {
    LeftOutNames leftOut;
    SourceReport report = source_->visit([&](std::string_view path) {
        if (excluded_.contain(path))
            ++leftOut.excluded;
        else if (!scope_.contains(path))
            ++leftOut.tooDeep;
        else
            visitor(path);
    });
    report.leftOut += leftOut;
    return report;
}

}  // namespace zqpaths::program
