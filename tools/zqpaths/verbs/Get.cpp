#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/NumberInput.hpp"
#include "tools/zqpaths/NumberRanges.hpp"
#include "tools/zqpaths/Output.hpp"
#include "tools/zqpaths/Progress.hpp"
#include "tools/zqpaths/SavedSet.hpp"
#include "tools/zqpaths/verbs/Verbs.hpp"

namespace zqpaths {
namespace {

constexpr std::string_view kStandardInput = "-";

/// Prints the paths of numbers, slice by slice, in the order in which the numbers come.
class Printer {
public:
    Printer(PathSet& set, const GetOptions& options, const MessageOptions& messages)
        : set_(set),
          output_(options.output),
          progress_("getting", messages, std::nullopt, Progress::Prints::kPaths),
          inGroups_(options.groups) {}

    void take(const NumberRange& range) {
        for (std::uint64_t i = 0; i < range.size(); ++i) {
            numbers_.push_back(range[i]);
            if (numbers_.size() == PathSet::kPathsACall) printSlice();
        }
    }

    /// Prints what has been taken, save for the files of a group that may go on.
    void printSlice() {
        if (inGroups_) {
            set_.getGroups(numbers_, [this](auto folder, auto names) { append(folder, names); });
        } else {
            set_.get(numbers_, [this](auto number, auto path) { output_.path(number, path); });
        }
        progress_.advance(numbers_.size());
        numbers_.clear();
    }

    /// Lets whoever reads have what has been printed.
    void hand() {
        printSlice();
        output_.finish();
    }

    void finish() {
        printSlice();
        printGroup();
        output_.finish();
    }

private:
    void append(std::string_view folder, std::span<const std::string> names) {
        if (folder != folder_) printGroup();
        folder_ = folder;
        names_.insert(names_.end(), names.begin(), names.end());
    }

    void printGroup() {
        if (!names_.empty()) output_.group(folder_, names_);
        names_.clear();
    }

    PathSet& set_;
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

}  // namespace

ExitStatus runGet(const GetOptions& options, const MessageOptions& messages) {
    std::vector<std::optional<NumberRange>> wanted;  // nothing where standard input is to be read
    for (const std::string& text : options.numbers) {
        wanted.emplace_back();
        if (text != kStandardInput) wanted.back() = parseNumberRange(text);
    }

    PathSet set = openSet(options.set);
    for (const std::optional<NumberRange>& range : wanted)
        if (range) range->requireIn(set.size());

    Printer printer(set, options, messages);
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

}  // namespace zqpaths
