#include "tools/zqpaths/arguments/GivenOptions.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/HelpText.hpp"
#include "tools/zqpaths/arguments/Names.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

constexpr std::string_view kEndOfOptions = "--";
constexpr std::string_view kSwitchedOn = "true";  // the parser's word for a switch without a value

/// The parser takes "[a,b]" apart, passes over a value that is empty, and goes on to look for
/// options after "--" once a verb has its arguments; files have all sorts of names. So an argument
/// that it could take for something else is marked, and one that begins with a mark as well.
constexpr char kMark = '\1';

/// The arguments, the last one first, as the parser wants them.
std::vector<std::string> marked(const std::vector<std::string>& arguments) {
    std::vector<std::string> texts;
    bool mayBeOption = true;
    for (std::string text : arguments) {
        if (mayBeOption && text == kEndOfOptions) {
            mayBeOption = false;
            continue;
        }
        const bool isOption = mayBeOption && text.starts_with('-');
        if (isOption && text.starts_with(kEndOfOptions) && text.find('=') == text.size() - 1)
            text.push_back(kMark);
        else if (text.starts_with('[') || text.starts_with(kMark) ||
                 (!mayBeOption && text.starts_with('-')))
            text.insert(text.begin(), kMark);
        texts.push_back(std::move(text));
    }
    std::ranges::reverse(texts);
    return texts;
}

std::string unmarked(const std::string& text) {
    return text.starts_with(kMark) ? text.substr(1) : text;
}

/// Whether what the parser has no use for was meant as an option. "-5" counts from an end.
bool isOptionLike(const std::string& text) {
    return text.size() > 1 && text[0] == '-' && (text[1] < '0' || text[1] > '9');
}

/// What is said of an option: the longest of its names, an argument's only one.
std::string nameOf(const Option& option) {
    return option.namesApart().back();
}

bool hasName(const Option& option, const std::string& name) {
    const std::vector<std::string> names = option.namesApart();
    return std::ranges::find(names, name) != names.end();
}

/// The parser finds which text belongs to which option; whether they fit is told here, in words
/// that name verb and option.
class GivenOptions {
public:
    GivenOptions(const ProgramTable& table, const Verb& verb,
                 const std::vector<std::string>& arguments)
        : table_(table), verb_(verb) {
        parser_.set_help_flag();  // in the table's words instead
        parser_.allow_extras();
        declare(help_);
        for (const Option& option : verb.options) declare(option);
        parse(arguments);
        collect();
    }
    GivenOptions(const GivenOptions&) = delete;
    GivenOptions& operator=(const GivenOptions&) = delete;

    bool isHelpWanted() const { return isGiven(help_); }

    void requireThatAllFits() const {
        if (!withoutValue_.empty())
            refuse(": " + withoutValue_ + " lacks its " + require(withoutValue_).value);
        requireNothingElse();
        for (const Given& given : given_) {
            requireNoValueOfSwitch(given);
            requireOnce(*given.option);
            requireCompany(*given.option);
            requireWord(given);
        }
        requireNoneMissing();
    }

    void take() const {
        for (const Given& given : given_) given.option->take(given.text);
    }

private:
    struct Given {
        const Option* option;
        std::string text;  // kSwitchedOn for a switch, unless it was given a value
    };

    void declare(const Option& option) {
        CLI::Option* const declared =
            option.isSwitch()
                ? parser_.add_flag(option.names)
                : parser_.add_option(option.names, [](const CLI::results_t&) { return true; });
        declared->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        if (option.isArgument() && option.isRepeated) declared->allow_extra_args();
        declared_.emplace(declared, &option);
    }

    void parse(const std::vector<std::string>& arguments) {
        std::vector<std::string> texts = marked(arguments);
        try {
            parser_.parse(texts);
        } catch (const CLI::ArgumentMismatch&) {
            // The one thing that the parser refuses: the last option has no value.
            const std::string& last = arguments.back();
            withoutValue_ = last.starts_with(kEndOfOptions) ? last : std::string{'-', last.back()};
        }
    }

    /// What is for which option, in the order given.
    void collect() {
        std::map<const CLI::Option*, std::size_t> takenCounts;
        for (const CLI::Option* const declared : parser_.parse_order()) {
            const std::string& text = declared->results().at(takenCounts[declared]++);
            given_.push_back({declared_.at(declared), unmarked(text)});
        }
    }

    void requireNothingElse() const {
        std::string unexpected;  // arguments, each after a space
        for (const std::string& text : parser_.remaining()) {
            if (isOptionLike(text)) static_cast<void>(require(text.substr(0, text.find('='))));
            unexpected += ' ' + printablePath(unmarked(text));
        }
        if (!unexpected.empty())
            refuse(": the following arguments were not expected:" + unexpected);
    }

    /// The option with this name, if there is one.
    const Option* find(const std::string& name) const {
        if (hasName(help_, name)) return &help_;
        const auto place = std::ranges::find_if(verb_.options, [&name](const Option& option) {
            return !option.isArgument() && hasName(option, name);
        });
        return place == verb_.options.end() ? nullptr : &*place;
    }

    const Option& require(const std::string& name) const {
        if (const Option* const option = find(name)) return *option;
        std::vector<std::string> names;
        for (const Option& option : verb_.options)
            if (!option.isArgument()) names.push_back(nameOf(option));
        names.push_back(nameOf(help_));
        refuse(" has no option " + printablePath(name) + nearestInWords(name, names, ""));
    }

    bool isGiven(const Option& option) const {
        return std::ranges::any_of(
            given_, [&option](const Given& given) { return given.option == &option; });
    }

    bool isGiven(const std::string& name) const {
        return std::ranges::any_of(
            given_, [&name](const Given& given) { return hasName(*given.option, name); });
    }

    void requireNoValueOfSwitch(const Given& given) const {
        if (given.option->isSwitch() && given.text != kSwitchedOn)
            refuse(": " + nameOf(*given.option) + " takes no value");
    }

    void requireOnce(const Option& option) const {
        const auto count = std::ranges::count_if(
            given_, [&option](const Given& given) { return given.option == &option; });
        if (count > 1 && !option.isRepeated && !option.isSwitch())
            refuse(": " + nameOf(option) + " is given twice");
    }

    void requireCompany(const Option& option) const {
        for (const std::string& other : namesApart(option.excluded))
            if (isGiven(other)) refuse(": " + other + " excludes " + nameOf(option));
        if (!option.needed.empty() && !isGiven(option.needed))
            refuse(": " + nameOf(option) + " needs " + option.needed);
    }

    void requireWord(const Given& given) const {
        if (given.option->canBe(given.text)) return;
        const std::vector<std::string>& words = given.option->words;
        const bool isList = given.option->isWordList;
        refuse(": " + nameOf(*given.option) + " is " + (isList ? "a list of " : "") +
               inWords(words, isList ? "and" : "or") + ", not '" + printablePath(given.text) + "'" +
               nearestInWords(given.text, words, "'"));
    }

    void requireNoneMissing() const {
        std::vector<std::string> missing;
        for (const Option& option : verb_.options) {
            if (!option.isRequired || isGiven(option)) continue;
            missing.push_back(nameOf(option) + (option.isArgument() ? "" : ' ' + option.value));
        }
        if (!missing.empty())
            refuse(": " + inWords(missing, "and") +
                   (missing.size() == 1 ? " is missing" : " are missing"));
    }

    [[noreturn]] void refuse(const std::string& reason) const {
        throw wrongUse(verb_.name + reason + '\n' + usage(table_, verb_));
    }

    const ProgramTable& table_;
    const Verb& verb_;
    const Option help_ = helpOption();
    CLI::App parser_;
    std::map<const CLI::Option*, const Option*> declared_;
    std::vector<Given> given_;
    std::string withoutValue_;  // the name of an option that lacks its value
};

}  // namespace

bool takeOptions(const ProgramTable& table, const Verb& verb,
                 const std::vector<std::string>& arguments) {
    const GivenOptions given(table, verb, arguments);
    if (given.isHelpWanted()) return false;
    given.requireThatAllFits();
    given.take();
    return true;
}

}  // namespace zqpaths::program
