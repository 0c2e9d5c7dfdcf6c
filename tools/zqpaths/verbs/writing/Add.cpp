#include <memory>
#include <string>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/GrowingSet.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths::program {
namespace {

struct AddOptions {
    std::string set;
    SourceOptions source;
    MessageOptions messages;
};

ExitStatus add(const AddOptions& options) {
    const std::unique_ptr<PathSource> source = openSource(options.source, options.set);
    GrowingSet set(options.set, PathSetWriter::Mode::kAppend, "adding", options.messages);
    set.expectBy([&source] { return source->partGiven(); });
    const SourceReport report = source->visit([&set](std::string_view path) { set.add(path); });
    recordScans(set.writer(), source->takeScans());
    set.save();
    return statusAfter(report, options.source, options.messages);
}

}  // namespace

Verb addVerb() {
    const auto options = std::make_shared<AddOptions>();
    return {.name = "add",
            .synopsis = "SET DIR... | SET --from FORMAT FILE... | SET --list FILE",
            .summary = "add paths after those of a set",
            .examples = {"zqpaths add usr.zqp /opt",
                         "git ls-files -z | zqpaths add files.zqp --list - -0"},
            .details = kSourceDetails,
            .options = rows(setArgument(options->set), sourceOptions(options->source),
                            messageOptions(options->messages)),
            .run = [options] { return add(*options); }};
}

}  // namespace zqpaths::program
