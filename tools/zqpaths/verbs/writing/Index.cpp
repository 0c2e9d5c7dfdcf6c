#include <memory>
#include <string>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sets/GrowingSet.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace zqpaths::program {
namespace {

struct IndexOptions {
    std::string set;
    SourceOptions source;
    bool force = false;
    MessageOptions messages;
};

ExitStatus index(const IndexOptions& options) {
    const std::unique_ptr<PathSource> source = openSource(options.source, options.set);
    GrowingSet set(options.set, modeOfNew(options.force), "indexing", options.messages);
    set.expectBy([&source] { return source->partGiven(); });
    const SourceReport report = source->visit([&set](std::string_view path) { set.add(path); });
    if (set.addedCount() == 0)
        throw Failure(ExitStatus::kFailed, "no paths in " + printableNames(options.source));
    recordScans(set.writer(), source->takeScans());
    set.save();
    return statusAfter(report, options.source, options.messages);
}

}  // namespace

Verb indexVerb() {
    const auto options = std::make_shared<IndexOptions>();
    return {.name = "index",
            .synopsis = "SET DIR... | SET --from FORMAT FILE... | SET --list FILE",
            .summary = "make a set of directories, archives, listings or a list",
            .examples = {"zqpaths index usr.zqp /usr --exclude '*.pyc' --exclude-from ~/.gitignore",
                         "aws s3 ls --recursive s3://data | zqpaths index data.zqp --from s3 -"},
            .details = kSourceDetails,
            .options = rows(setArgument(options->set), sourceOptions(options->source),
                            forceOption(options->force), messageOptions(options->messages)),
            .run = [options] { return index(*options); }};
}

}  // namespace zqpaths::program
