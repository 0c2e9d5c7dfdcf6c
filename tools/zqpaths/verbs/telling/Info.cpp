#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/SetReport.hpp"
#include "tools/zqpaths/output/Terminal.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/MemoryInUse.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct InfoOptions {
    std::string set;
    bool partial = false;
    bool json = false;
    bool inBytes = false;
    bool decimal = false;
    MessageOptions messages;
};

constexpr std::size_t kLargestFolders = 10;

DrawingStyle styleOfStandardOutput() {
    return {outputWidth() && charsetOfLocale() == Charset::kUtf8, hasColours(Colours::kAuto)};
}

SizeUnits unitsOf(const InfoOptions& options) {
    if (options.inBytes) return SizeUnits::kBytes;
    return options.decimal ? SizeUnits::kDecimal : SizeUnits::kBinary;
}

/// Of the set, and of the files that it names.
std::vector<std::string> filesOf(const PathSet& set) {
    std::vector<std::string> files;
    if (set.isSetOfSets()) files.push_back(set.file());
    for (std::size_t place = 0; place < set.fileCount(); ++place)
        files.push_back(set.fileName(place));
    return files;
}

/// Of those that are there.
std::uint64_t sizeOf(const std::vector<std::string>& files) {
    std::uint64_t sum = 0;
    for (const std::string& file : files) {
        std::error_code isNotThere;
        const std::uintmax_t size = std::filesystem::file_size(file, isNotThere);
        if (!isNotThere) sum += size;
    }
    return sum;
}

/// Of a path that is not missing.
std::optional<std::uint64_t> anyNumberOf(const PathSet& set) {
    std::uint64_t number = 1;
    for (const PathSet::Missing& missing : set.missing())
        if (missing.firstNumber == number) number = missing.lastNumber + 1;
    if (number > set.size()) return std::nullopt;
    return number;
}

SetReport::Files countsOf(const PathSet& set) {
    SetReport::Files files{.count = set.fileCount()};
    for (const MissingFile& missing : missingFilesOf(set)) {
        ++files.missingCount;
        files.missingPathCount += missing.count;
    }
    return files;
}

SetReport reportOn(const std::string& file, bool isPartial) {
    using Clock = std::chrono::steady_clock;
    SetReport report;
    const std::uint64_t allocatedBefore = allocatedBytes();
    const Clock::time_point start = Clock::now();
    const PathSet set = openSet(file, isPartial);
    const Clock::time_point opened = Clock::now();
    report.opening = opened - start;
    if (const std::optional<std::uint64_t> number = anyNumberOf(set)) {
        static_cast<void>(set.path(*number));
        report.firstPath = Clock::now() - opened;
    }
    // Before anything else is read.
    report.allocatedSize = allocatedBytes() - allocatedBefore;
    const std::vector<std::string> files = filesOf(set);
    report.residentSize = residentBytesOf(files);
    report.file = file;
    report.isSetOfSets = set.isSetOfSets();
    report.files = countsOf(set);
    report.fileSize = sizeOf(files);
    report.goneCount = set.goneCount();
    report.statistics = statisticsOf(set, kLargestFolders);
    return report;
}

ExitStatus info(const InfoOptions& options) {
    const Progress progress("looking", options.messages);
    const SetReport report = reportOn(options.set, options.partial);
    Output output({});
    if (options.json) {
        output.line(reportJson(report, charsetOf(STDOUT_FILENO)));
    } else {
        output.text(reportText(report, styleOfStandardOutput(), unitsOf(options)));
    }
    output.finish();
    return ExitStatus::kDone;
}

}  // namespace

Verb infoVerb() {
    const auto options = std::make_shared<InfoOptions>();
    return {.name = "info",
            .synopsis = "SET",
            .summary = "tell what is in a set and where its bytes go",
            .examples = {"zqpaths info usr.zqp", "zqpaths info --json usr.zqp | jq .paths"},
            .details =
                "Sizes are in KiB and MiB, by 1,024. What is in memory is measured after the first "
                "path: pages of the file, which the system shares among all who read it and takes "
                "back where it is short of memory, and what the program has allocated.",
            .options = rows(setArgument(options->set), partialOption(options->partial),
                            flag("--json", options->json, "print one JSON object"),
                            flag("--bytes", options->inBytes, "tell sizes in bytes, exactly"),
                            excluding("--bytes", flag("--si", options->decimal,
                                                      "tell sizes in kB and MB, by 1,000")),
                            messageOptions(options->messages)),
            .run = [options] { return info(*options); }};
}

}  // namespace zqpaths::program
