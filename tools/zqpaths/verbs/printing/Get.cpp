#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/NumberInput.hpp"
#include "tools/zqpaths/arguments/NumberRanges.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "tools/zqpaths/progress/Progress.hpp"
#include "tools/zqpaths/sets/ChosenPaths.hpp"
#include "tools/zqpaths/sets/OpenSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths::program {
namespace {

constexpr std::string_view kStandardInput = "-";

struct GetOptions {
    std::string set;
    std::vector<std::string> numbers;  // "N", "A:B", "A:B:STEP", "-" for standard input
    bool groups = false;
    bool partial = false;
    OutputOptions output;
    MessageOptions messages;
};

/// Prints the paths of numbers, slice by slice, in the order in which the numbers come.
class Printer {
public:
    Printer(const PathSet& set, const GetOptions& options)
        : set_(set),
          output_(options.output, {.isQuiet = options.messages.quiet}),
          progress_("getting", options.messages, std::nullopt, Progress::Prints::kPaths),
          inGroups_(options.groups) {}

    void take(const NumberRange& range) {
        for (std::uint64_t i = 0; i < range.size(); ++i) {
            numbers_.push_back(range[i]);
            if (numbers_.size() == kPathsPerCall) printSlice();
        }
    }

    /// Prints what has been taken, save for the files of a group that may go on.
    void printSlice() {
        set_.paths(numbers_, [this](std::uint64_t number, std::string_view path) {
            if (inGroups_)
                append(path);
            else
                output_.path(number, path);
        });
        progress_.advance(numbers_.size());
        numbers_.clear();
    }

    /// Lets whoever reads have what has been printed.
    void hand() {
        printSlice();
        output_.flush();
    }

    void finish() {
        printSlice();
        printGroup();
        output_.finish();
    }

private:
    void append(std::string_view path) {
        const std::string_view folder = path.substr(0, folderLength(path));
        if (folder != folder_) printGroup();
        folder_ = folder;
        names_.emplace_back(path.substr(folder.size()));
    }

    void printGroup() {
        if (!names_.empty()) output_.group(folder_, names_);
        names_.clear();
    }

    const PathSet& set_;
    Output output_;
    Progress progress_;
    bool inGroups_;
    std::vector<std::uint64_t> numbers_;
    std::string folder_;              // of the group that may go on
    std::vector<std::string> names_;  // of files in it
};

void takeStandardInput(std::uint64_t setSize, Printer& printer) {
    NumberInput input(setSize);
    try {
        while (input.read([&printer](const NumberRange& range) { printer.take(range); }))
            printer.hand();
    } catch (const Failure&) {
        printer.finish();  // what was asked for before is there
        throw;
    }
}

ExitStatus get(const GetOptions& options) {
    const PathSet set = openSet(options.set, options.partial);
    std::vector<std::optional<NumberRange>> wanted;  // nothing where standard input is to be read
    for (const std::string& text : options.numbers) {
        wanted.emplace_back();
        if (text != kStandardInput) wanted.back() = parseNumberRange(text, set.size());
    }

    Printer printer(set, options);
    for (const std::optional<NumberRange>& range : wanted) {
        if (range) {
            printer.take(*range);
        } else {
            takeStandardInput(set.size(), printer);
        }
    }
    printer.finish();
    return ExitStatus::kDone;
}

}  // namespace

Verb getVerb() {
    const auto options = std::make_shared<GetOptions>();
    return {
        .name = "get",
        .synopsis = "SET NUMBER...",
        .summary = "print paths by number",
        .examples = {"zqpaths get usr.zqp 1 10:20 -5: 100:1:-1",
                     "seq 100 200 | zqpaths get usr.zqp -"},
        .details =
            "A:B is all numbers from A to B, both included, A:B:STEP each STEP-th of them. "
            "Only a STEP below zero counts down, as in 20:10:-1. A number below zero counts from "
            "the end, and without A or B the range goes to the set's: -1 is the last path, -5: the "
            "last five, :5 the first five, ::100 each hundredth. Numbers given as arguments "
            "are checked before anything is printed, those on standard input as they come, "
            "separated by white space.",
        .options = rows(setArgument(options->set),
                        arguments("NUMBER", options->numbers,
                                  "N, A:B or A:B:STEP; - for those on standard input"),
                        partialOption(options->partial), outputOptions(options->output),
                        excluding("--csv,--fields", flag("--groups", options->groups,
                                                         "print each folder, then its files")),
                        messageOptions(options->messages)),
        .run = [options] { return get(*options); }};
}

}  // namespace zqpaths::program
