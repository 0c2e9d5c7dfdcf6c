#include "tools/zqpaths/arguments/GivenOptions.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/HelpText.hpp"
#include "tools/zqpaths/arguments/Names.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

constexpr std::string_view kEndOfOptions = "--";

/// What is said of an option: the longest of its names, an argument's only one.
std::string nameOf(const Option& option) {
    return option.namesApart().back();
}

bool hasName(const Option& option, const std::string& name) {
    const std::vector<std::string> names = option.namesApart();
    return std::ranges::find(names, name) != names.end();
}

class GivenOptions {
public:
    GivenOptions(const ProgramTable& table, const Verb& verb,
                 const std::vector<std::string>& arguments)
        : table_(table), verb_(verb), arguments_(arguments) {
        while (next_ < arguments_.size()) read(arguments_[next_++]);
    }
    GivenOptions(const GivenOptions&) = delete;
    GivenOptions& operator=(const GivenOptions&) = delete;

    bool isHelpWanted() const { return isGiven(help_); }

    void requireThatAllFits() const {
        if (!unexpected_.empty())
            refuse(": the following arguments were not expected:" + unexpected_);
        for (const Given& given : given_) {
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
        std::string text;  // nothing for a switch
    };

    void read(const std::string& argument) {
        if (!mayBeOption_ || !isOption(argument))
            readArgument(argument);
        else if (argument == kEndOfOptions)
            mayBeOption_ = false;
        else if (argument.starts_with("--"))
            readLong(argument);
        else
            readShort(argument);
    }

    bool isOption(const std::string& argument) const {
        if (argument.size() < 2 || argument[0] != '-') return false;
        const bool isNumber = argument[1] >= '0' && argument[1] <= '9';
        return !isNumber || find(argument.substr(0, 2)) != nullptr;
    }

    void readArgument(const std::string& argument) {
        const auto place = std::ranges::find_if(verb_.options, [this](const Option& option) {
            return option.isArgument() && (option.isRepeated || !isGiven(option));
        });
        if (place != verb_.options.end())
            given_.push_back({&*place, argument});
        else
            unexpected_ += ' ' + printablePath(argument);
    }

    void readLong(const std::string& argument) {
        const std::size_t end = std::min(argument.find('='), argument.size());
        const std::string name = argument.substr(0, end);
        const Option& option = require(name);
        if (end == argument.size())
            given_.push_back({&option, option.isSwitch() ? "" : takeValue(name, option)});
        else if (!option.isSwitch())
            given_.push_back({&option, argument.substr(end + 1)});
        else
            refuse(": " + name + " takes no value");
    }

    /// Switches in one piece, and an option with its value, if it has one, at their end.
    void readShort(const std::string& argument) {
        for (std::size_t i = 1; i < argument.size(); ++i) {
            const std::string name{'-', argument[i]};
            const Option& option = require(name);
            if (option.isSwitch()) {
                given_.push_back({&option, ""});
                continue;
            }
            const std::string rest = argument.substr(i + 1);
            given_.push_back({&option, rest.empty() ? takeValue(name, option) : rest});
            return;
        }
    }

    std::string takeValue(const std::string& name, const Option& option) {
        if (next_ == arguments_.size()) refuse(": " + name + " lacks its " + option.value);
        return arguments_[next_++];
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

    void requireOnce(const Option& option) const {
        const auto count = std::ranges::count_if(
            given_, [&option](const Given& given) { return given.option == &option; });
        if (count > 1 && !option.isRepeated && !option.isSwitch())
            refuse(": " + nameOf(option) + " is given twice");
    }

    void requireCompany(const Option& option) const {
        for (const std::string& excluded : namesApart(option.excluded))
            if (isGiven(excluded)) refuse(": " + excluded + " excludes " + nameOf(option));
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
    const std::vector<std::string>& arguments_;
    std::size_t next_ = 0;     // argument to be read
    bool mayBeOption_ = true;  // no "--" has come
    std::vector<Given> given_;
    std::string unexpected_;  // arguments, each after a space
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
