#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/CutShortFile.hpp"
#include "tools/zqpaths/DeferredSignals.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sets/GrowingSet.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sets/SeenPaths.hpp"
#include "tools/zqpaths/sets/WantedPaths.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/manifest/SetManifestWriter.hpp"

namespace zqpaths::program {
namespace {

/// How the name of a set of sets ends, which a merging makes under such a name alone. Readers go by
/// what is in a file.
constexpr std::string_view kManifestEnding = ".zqs";

struct MergeOptions {
    std::string out;
    std::vector<std::string> sets;
    bool copiesSegments = false;
    bool force = false;
    MessageOptions messages;
};

Failure noPaths() {
    return {ExitStatus::kFailed, "no paths in these sets"};
}

/// Each path stands where it is met first. Those that are gone are left out.
void writePathsOnce(const MergeOptions& options) {
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
    if (out.addedCount() == 0) throw noPaths();
    out.save();
}

std::uint64_t bytesOfSegments(const std::vector<std::string>& files) {
    std::uint64_t size = 0;
    for (const std::string& file : files)
        for (const PathSet::Segment& segment : openSet(file).segments()) size += segment.size;
    return size;
}

/// All paths of all sets in one file, none of them decoded.
void copySegments(const MergeOptions& options) {
    if (options.out.ends_with(kManifestEnding))
        throw failureAt(options.out, "is the name of a set of sets; --into makes one file, as " +
                                         printablePath(std::filesystem::path(options.out)
                                                           .filename()
                                                           .replace_extension("zqp")
                                                           .string()));
    GrowingSet out(options.out, modeOfNew(options.force), "merging", options.messages,
                   GrowingSet::Copies{bytesOfSegments(options.sets)});
    for (const std::string& file : options.sets) out.addSet(openSet(file));
    if (out.writer().size() == 0) throw noPaths();
    out.save();
}

/// A set of sets, which names these.
void writeManifest(const MergeOptions& options) {
    const DeferredSignals signals;
    nameWhatIsRead(printablePath(options.out));
    SetManifestWriter out = [&] {
        const DeferredSignals::Wait wait;  // for another writer
        return SetManifestWriter(options.out, options.force ? SetManifestWriter::Mode::kReplace
                                                            : SetManifestWriter::Mode::kCreate);
    }();
    for (const std::string& file : options.sets) {
        DeferredSignals::throwIfOneCame();
        out.addSet(file);
    }
    if (out.size() == 0) throw noPaths();
    out.commit();
    if (!options.messages.quiet) tellSizeOfSet(options.out, out.size());
}

ExitStatus merge(const MergeOptions& options) {
    if (options.copiesSegments)
        copySegments(options);
    else if (options.out.ends_with(kManifestEnding))
        writeManifest(options);
    else
        writePathsOnce(options);
    return ExitStatus::kDone;
}

}  // namespace

Verb mergeVerb() {
    const auto options = std::make_shared<MergeOptions>();
    return {
        .name = "merge",
        .synopsis = "OUT SET... | OUT.zqs SET... | --into OUT SET...",
        .summary = "make one set of many: a file, a set of sets, or a copy of all",
        .examples = {"zqpaths merge all.zqp usr.zqp opt.zqp",
                     "zqpaths merge all.zqs part-*.zqp && zqpaths merge --into all.zqp all.zqs"},
        .details =
            "There are three ways. OUT has each path once, where it is met first, and none that is "
            "gone. OUT.zqs, which is known by the end of its name, is a set of sets: it names the "
            "SETs, which stay where they are, and has all their paths, repeated ones, too; no path "
            "is read, so that it takes no time. With --into all paths of all SETs are copied into "
            "one file as they are, repeated ones and those that are gone, too, without being coded "
            "again. SETs may be sets of sets.",
        .options = rows(
            argument("OUT", options->out, "the set to make; a set of sets if it ends with .zqs"),
            arguments("SET", options->sets, "saved sets"),
            flag("--into", options->copiesSegments, "copy all paths as they are into one file"),
            forceOption(options->force), messageOptions(options->messages)),
        .run = [options] { return merge(*options); }};
}

}  // namespace zqpaths::program
