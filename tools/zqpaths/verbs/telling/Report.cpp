#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/report/ReportData.hpp"
#include "tools/zqpaths/report/ReportPage.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/sources/FileBeside.hpp"
#include "tools/zqpaths/sources/WholeFiles.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths::program {
namespace {

struct ReportOptions {
    std::string set;
    std::string page;
    bool partial = false;
    bool force = false;
    MessageOptions messages;
};

ExitStatus report(const ReportOptions& options) {
    const PathSet set = openSet(options.set, options.partial);
    if (!options.force) requireFree(options.page);
    std::string data;
    {
        Progress progress("reading names", options.messages, set.size());
        data = reportData(set, kMostFolders, [&progress] { progress.advance(); });
    }
    const std::string title = printableText(std::filesystem::path(options.set).filename().string());
    const std::string text = reportPage(title, data);
    const std::vector<std::uint8_t> page(text.begin(), text.end());
    writeWholeFiles({{options.page, page}}, options.force);
    if (!options.messages.quiet) tell(printablePath(options.page) + " shows " + title);
    return ExitStatus::kDone;
}

}  // namespace

Verb reportVerb() {
    const auto options = std::make_shared<ReportOptions>();
    return {
        .name = "report",
        .synopsis = "SET PAGE",
        .summary = "write a page for browsers with a map of a set",
        .examples = {"zqpaths report usr.zqp usr.html",
                     "zqpaths report --force usr.zqp usr.html && xdg-open usr.html"},
        .details =
            "PAGE is one file of HTML that needs no network: figures, a map of the folders to go "
            "into, as a treemap or a sunburst, a search over folders, and charts of depths and "
            "extensions. It has the 20,000 largest folders; the others are summed up in the "
            "folders that they are in. The same set gives the same page.",
        .options = rows(setArgument(options->set),
                        argument("PAGE", options->page, "the file to be written"),
                        partialOption(options->partial),
                        flag("--force", options->force, "replace a file that is there"),
                        messageOptions(options->messages)),
        .run = [options] { return report(*options); }};
}

}  // namespace zqpaths::program
