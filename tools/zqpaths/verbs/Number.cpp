#include <string>
#include <string_view>
#include <unordered_map>

#include "tools/zqpaths/Messages.hpp"
#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/PathScan.hpp"
#include "tools/zqpaths/PrintablePath.hpp"
#include "tools/zqpaths/Progress.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

constexpr std::uint64_t kNoNumber = 0;

using Numbers = std::unordered_map<std::string_view, std::uint64_t>;

/// Fills in the first number of each path that the set has.
void findNumbers(PathSet& set, Numbers& numbers, const MessageOptions& messages) {
    Progress progress("searching", messages, set.size());
    std::size_t missingCount = numbers.size();
    scanPaths(
        set,
        [&](std::uint64_t number, std::string_view path) {
            progress.advance();
            const auto wanted = numbers.find(path);
            if (wanted == numbers.end() || wanted->second != kNoNumber) return;
            wanted->second = number;
            --missingCount;
        },
        [&] { return missingCount == 0; });
}

}  // namespace

ExitStatus runNumber(const NumberOptions& options, const MessageOptions& messages) {
    PathSet set = openSet(options.set);
    Numbers numbers;
    for (const std::string& path : options.paths) numbers.emplace(path, kNoNumber);
    findNumbers(set, numbers, messages);

    Output output(options.output);
    for (const std::string& path : options.paths)
        if (numbers[path] != kNoNumber) output.number(numbers[path], path);
    output.finish();

    ExitStatus status = ExitStatus::kDone;
    for (const std::string& path : options.paths) {
        if (numbers[path] != kNoNumber) continue;
        status = ExitStatus::kNegative;
        if (!messages.quiet)
            tell(printablePath(path) + ": is not in " + printablePath(options.set));
    }
    return status;
}

}  // namespace zqpaths
