#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/GrowingSet.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/SeenPaths.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct MergeOptions {
    std::string out;
    std::vector<std::string> sets;
    bool force = false;
    MessageOptions messages;
};

/// Each path stands where it is met first. Those that are gone are left out.
ExitStatus merge(const MergeOptions& options) {
    std::uint64_t size = 0;
    for (const std::string& file : options.sets) size += openSet(file).size();
    GrowingSet out(options.out, modeOfNew(options.force), "merging", options.messages, size);
    SeenPaths seen;
    for (const std::string& file : options.sets) {
        const PathSet set = openSet(file);
        const WantedPaths wanted(set, false);
        set.forEach([&](std::uint64_t number, std::string_view path) {
            if (wanted.has(number) && seen.insert(path))
                out.add(path);
            else
                out.step();
        });
    }
    if (out.addedCount() == 0) throw Failure(ExitStatus::kFailed, "no paths in these sets");
    out.save();
    return ExitStatus::kDone;
}

}  // namespace

Verb mergeVerb() {
    const auto options = std::make_shared<MergeOptions>();
    return {.name = "merge",
            .synopsis = "OUT SET...",
            .summary = "make one set of many, each path once",
            .examples = {"zqpaths merge all.zqp usr.zqp opt.zqp",
                         "zqpaths merge --force all.zqp [a-z]*.zqp"},
            .options = rows(argument("OUT", options->out, "the set to make"),
                            arguments("SET", options->sets, "saved sets"),
                            forceOption(options->force), messageOptions(options->messages)),
            .run = [options] { return merge(*options); }};
}

}  // namespace zqpaths::program
