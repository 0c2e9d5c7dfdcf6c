#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct NumberOptions {
    std::string set;
    std::vector<std::string> paths;
    bool partial = false;
    OutputOptions output;
    MessageOptions messages;
};

ExitStatus number(const NumberOptions& options) {
    const PathSet set = openSet(options.set, options.partial);
    Output output(options.output,
                  {.asText = {PathField::kNumber}, .isQuiet = options.messages.quiet});
    std::vector<const std::string*> missing;
    std::vector<const std::string*> gone;
    for (const std::string& path : options.paths) {
        if (const std::optional<std::uint64_t> found = set.numberOf(path)) {
            output.path(*found, path);
            if (set.isGone(*found)) gone.push_back(&path);
        } else {
            missing.push_back(&path);
        }
    }
    output.finish();
    if (!options.messages.quiet) {
        for (const std::string* path : missing)
            tell(printablePath(*path) + ": is not in " + printablePath(options.set));
        for (const std::string* path : gone) tell(printablePath(*path) + ": is gone");
    }
    return missing.empty() ? ExitStatus::kDone : ExitStatus::kNegative;
}

}  // namespace

Verb numberVerb() {
    const auto options = std::make_shared<NumberOptions>();
    return {
        .name = "number",
        .synopsis = "SET PATH...",
        .summary = "print the numbers of exact paths",
        .examples = {"zqpaths number usr.zqp /usr/bin/env",
                     "zqpaths number usr.zqp /usr/bin/env /usr/bin/sed --json"},
        .details =
            "A path that occurs more than once has its first number printed. Status 1 "
            "tells that a path is not there; the numbers of the others are printed.",
        .options = rows(setArgument(options->set), arguments("PATH", options->paths, "the paths"),
                        partialOption(options->partial), outputOptions(options->output),
                        messageOptions(options->messages)),
        .run = [options] { return number(*options); }};
}

}  // namespace zqpaths::program
