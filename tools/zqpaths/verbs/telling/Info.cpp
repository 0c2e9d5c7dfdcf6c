#include <langinfo.h>
#include <unistd.h>

#include <chrono>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/output/SetReport.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct InfoOptions {
    std::string set;
    bool json = false;
    MessageOptions messages;
};

constexpr std::size_t kLargestFolders = 10;

bool isUtf8Locale() {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) return false;  // the environment names one that is not installed
    const bool isUtf8 = std::strcmp(nl_langinfo_l(CODESET, locale), "UTF-8") == 0;
    freelocale(locale);
    return isUtf8;
}

bool isSet(const char* variable) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in the program changes the environment
    const char* const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

ReportStyle styleOfStandardOutput() {
    if (isatty(STDOUT_FILENO) == 0) return {};
    return {isUtf8Locale(), !isSet("NO_COLOR")};
}

SetReport reportOn(const std::string& file) {
    using Clock = std::chrono::steady_clock;
    SetReport report;
    const Clock::time_point start = Clock::now();
    const PathSet set = openSet(file);
    const Clock::time_point opened = Clock::now();
    report.opening = opened - start;
    if (set.size() > 0) {
        static_cast<void>(set.path(1));
        report.firstPath = Clock::now() - opened;
    }
    report.file = file;
    report.fileSize = std::filesystem::file_size(file);
    report.goneCount = set.goneCount();
    report.statistics = statisticsOf(set, kLargestFolders);
    return report;
}

ExitStatus info(const InfoOptions& options) {
    const SetReport report = reportOn(options.set);
    Output output({});
    if (options.json) {
        output.line(reportJson(report));
    } else {
        output.text(reportText(report, styleOfStandardOutput()));
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
            .options = rows(setArgument(options->set),
                            flag("--json", options->json, "print one JSON object"),
                            messageOptions(options->messages)),
            .run = [options] { return info(*options); }};
}

}  // namespace zqpaths::program
