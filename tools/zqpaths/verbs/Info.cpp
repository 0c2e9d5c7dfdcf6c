#include <langinfo.h>
#include <unistd.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <string_view>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/Progress.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/SetReport.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

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

std::uint64_t measureText(PathSet& set, const MessageOptions& messages) {
    Progress progress("reading", messages, set.size());
    std::uint64_t size = 0;
    set.get(1, set.size(), [&](std::uint64_t /*number*/, std::string_view path) {
        size += path.size() + 1;
        progress.advance();
    });
    return size;
}

/// What the frequencies say, if they are known.
void addBits(const std::vector<double>& frequencies, SetReport& report) {
    const std::vector<unsigned>& lengths = report.form.codeLengths;
    const double count = std::accumulate(frequencies.begin(), frequencies.end(), 0.0);
    if (frequencies.size() != lengths.size() || count <= 0) return;
    report.codedCount = static_cast<std::uint64_t>(std::llround(count));
    report.bitsACharacter =
        std::inner_product(frequencies.begin(), frequencies.end(), lengths.begin(), 0.0) / count;
}

SavedForm readForm(const std::string& file, const kxArray* fields, std::u16string_view characters) {
    try {
        return readSavedForm(kxGetData<std::uint8_t>(kxGetField(fields, 0, kPathTreeField)),
                             characters, kLargestFolders);
    } catch (const Failure& failure) {
        throw failureAt(file, std::string("field ") + kPathTreeField + ": " + failure.what(),
                        failure.status());
    }
}

SetReport reportOn(const std::string& file, const MessageOptions& messages) {
    const korvex::Array fields = loadFields(file);
    PathSet set = restoreSet(file, korvex::Array(kxDuplicateArray(fields.get())));
    const std::u16string characters = set.characters();
    const std::vector<double> frequencies = set.frequencies();

    SetReport report;
    report.file = file;
    report.fileSize = std::filesystem::file_size(file);
    report.pathCount = set.size();
    report.characterCount = characters.size();
    report.characterBytes =
        characters.size() * sizeof(char16_t) + frequencies.size() * sizeof(double);
    report.form = readForm(file, fields.get(), characters);
    addBits(frequencies, report);
    report.textSize = measureText(set, messages);
    return report;
}

}  // namespace

ExitStatus runInfo(const InfoOptions& options, const MessageOptions& messages) {
    const SetReport report = reportOn(options.set, messages);
    Output output({});
    if (options.json) {
        output.line(reportJson(report));
    } else {
        output.text(reportText(report, styleOfStandardOutput()));
    }
    output.finish();
    return ExitStatus::kDone;
}

}  // namespace zqpaths
