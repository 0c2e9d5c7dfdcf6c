#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/GrowingSet.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths::program {
namespace {

struct CompactOptions {
    std::string set;
    std::string out;  // empty for the set itself
    bool packed = false;
    bool force = false;
    MessageOptions messages;
};

ExitStatus compact(const CompactOptions& options) {
    const bool isInPlace = options.out.empty();
    const PathSet before = openSet(options.set);
    if (isInPlace)
        requireSetFile(before, "cannot be compacted in place; give the set file to make as OUT");
    GrowingSet out(isInPlace ? options.set : options.out, modeOfNew(isInPlace || options.force),
                   "compacting", options.messages, before.presentCount(),
                   options.packed ? PathSetWriter::Form::kPacked : PathSetWriter::Form::kImage);
    // Opened when the writer holds the file: what others have added up to then is there.
    const PathSet set = openSet(options.set);
    const WantedPaths wanted(set, false);
    set.forEach([&](std::uint64_t number, std::string_view path) {
        if (wanted.has(number)) out.add(path);
    });
    recordScans(out.writer(), encodedScansOf(set));
    out.save();
    return ExitStatus::kDone;
}

}  // namespace

Verb compactVerb() {
    const auto options = std::make_shared<CompactOptions>();
    Option out =
        argument("OUT", options->out, "the set to make, in place of SET if it is not given");
    out.isRequired = false;
    return {
        .name = "compact",
        .synopsis = "SET [OUT]",
        .summary = "write a set anew, to be opened at once or packed",
        .examples = {"zqpaths compact usr.zqp usr-packed.zqp --packed", "zqpaths compact usr.zqp"},
        .details =
            "A set is usually kept as images, which are read where they lie. Packed, it "
            "is a third of that, for keeping and sending; whoever reads it inflates "
            "what is needed first. Paths that are gone are left out, and those after them "
            "have lower numbers then. All else stays, and what update goes by. A set of sets is "
            "written as one file, OUT.",
        .options = rows(setArgument(options->set), std::move(out),
                        flag("--packed", options->packed, "as small as can be"),
                        forceOption(options->force), messageOptions(options->messages)),
        .run = [options] { return compact(*options); }};
}

}  // namespace zqpaths::program
