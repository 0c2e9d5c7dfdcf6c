#include <chrono>
#include <filesystem>
#include <memory>
#include <string>

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

SetReport reportOn(const std::string& file) {
    using Clock = std::chrono::steady_clock;
    SetReport report;
    const std::uint64_t allocatedBefore = allocatedBytes();
    const Clock::time_point start = Clock::now();
    const PathSet set = openSet(file);
    const Clock::time_point opened = Clock::now();
    report.opening = opened - start;
    if (set.size() > 0) {
        static_cast<void>(set.path(1));
        report.firstPath = Clock::now() - opened;
    }
    // Before anything else is read.
    report.residentSize = residentBytesOf(file);
    report.allocatedSize = allocatedBytes() - allocatedBefore;
    report.file = file;
    report.fileSize = std::filesystem::file_size(file);
    report.goneCount = set.goneCount();
    report.statistics = statisticsOf(set, kLargestFolders);
    return report;
}

ExitStatus info(const InfoOptions& options) {
    const Progress progress("looking", options.messages);
    const SetReport report = reportOn(options.set);
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
            .options = rows(
                setArgument(options->set), flag("--json", options->json, "print one JSON object"),
                flag("--bytes", options->inBytes, "tell sizes in bytes, exactly"),
                excluding("--bytes",
                          flag("--si", options->decimal, "tell sizes in kB and MB, by 1,000")),
                messageOptions(options->messages)),
            .run = [options] { return info(*options); }};
}

}  // namespace zqpaths::program
