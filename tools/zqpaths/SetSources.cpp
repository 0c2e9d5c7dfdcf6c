#include "tools/zqpaths/SetSources.hpp"

#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/SeenPaths.hpp"

namespace zqpaths {

void ExtendedSetSource::visit(const std::function<void(std::string_view path)>& visitor) {
    set_.get(1, set_.size(), [&visitor](std::uint64_t, std::string_view path) { visitor(path); });
    more_.visit(visitor);
}

void MergedSource::visit(const std::function<void(std::string_view path)>& visitor) {
    SeenPaths seen;
    for (const std::string& file : files_) {
        PathSet set = openSet(file);
        set.get(1, set.size(), [&](std::uint64_t, std::string_view path) {
            if (seen.insert(path)) visitor(path);
        });
    }
}

}  // namespace zqpaths
