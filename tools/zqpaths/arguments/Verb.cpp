#include "tools/zqpaths/arguments/Verb.hpp"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <system_error>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/arguments/Names.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"

namespace zqpaths::program {
namespace {

/// Decimal digits alone: neither -1 nor 0x10, and 010 is ten.
template <std::unsigned_integral Number>
Number wholeNumber(const std::string& names, const std::string& text) {
    Number number = 0;
    const char* const end = text.data() + text.size();
    const auto [parsed, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || parsed != end)
        throw wrongUse(names + ": " + printablePath(text) + " is no whole number, or too large");
    return number;
}

template <std::unsigned_integral Number, class Taken>
Option numberOption(std::string names, std::string value, Taken& taken, std::string description) {
    auto take = [names, &taken](const std::string& text) {
        taken = wholeNumber<Number>(names, text);
    };
    return {std::move(names), std::move(value), std::move(description), std::move(take)};
}

template <class Taken>
Option textOption(std::string names, std::string value, Taken& taken, std::string description) {
    return {std::move(names), std::move(value), std::move(description),
            [&taken](const std::string& given) { taken = given; }};
}

}  // namespace

std::vector<std::string> namesApart(const std::string& names) {
    std::vector<std::string> apart;
    for (std::size_t begin = 0; begin < names.size();) {
        const std::size_t end = std::min(names.find(',', begin), names.size());
        apart.push_back(names.substr(begin, end - begin));
        begin = end + 1;
    }
    return apart;
}

bool Option::canBe(const std::string& text) const {
    const auto isWord = [this](const std::string& part) {
        return std::ranges::find(words, part) != words.end();
    };
    if (words.empty()) return true;
    if (!isWordList) return isWord(text);
    std::size_t begin = 0;
    while (true) {
        const std::size_t end = text.find(',', begin);
        if (!isWord(text.substr(begin, end - begin))) return false;
        if (end == std::string::npos) return true;
        begin = end + 1;
    }
}

std::string Option::describedFully() const {
    std::string text = description;
    if (!words.empty() && !isArgument())
        text += "; " + value + " is " + (isWordList ? "a list of " : "") +
                inWords(words, isWordList ? "and" : "or");
    if (!excluded.empty()) text += "; not with " + inWords(program::namesApart(excluded), "or");
    if (!needed.empty()) text += "; with " + needed;
    return text;
}

Option flag(std::string names, bool& isOn, std::string description) {
    return flag(
        std::move(names), [&isOn] { isOn = true; }, std::move(description));
}

Option flag(std::string names, std::function<void()> work, std::string description) {
    return {std::move(names), "", std::move(description),
            [work = std::move(work)](const std::string& /*nothing*/) { work(); }};
}

Option text(std::string names, std::string value, std::string& taken, std::string description) {
    return textOption(std::move(names), std::move(value), taken, std::move(description));
}

Option text(std::string names, std::string value, std::optional<std::string>& taken,
            std::string description) {
    return textOption(std::move(names), std::move(value), taken, std::move(description));
}

Option number(std::string names, std::string value, std::uint64_t& taken, std::string description) {
    return numberOption<std::uint64_t>(std::move(names), std::move(value), taken,
                                       std::move(description));
}

Option number(std::string names, std::string value, std::optional<std::uint64_t>& taken,
              std::string description) {
    return numberOption<std::uint64_t>(std::move(names), std::move(value), taken,
                                       std::move(description));
}

Option number(std::string names, std::string value, unsigned& taken, std::string description) {
    return numberOption<unsigned>(std::move(names), std::move(value), taken,
                                  std::move(description));
}

Option argument(std::string name, std::string& taken, std::string description) {
    return required(textOption(std::move(name), "", taken, std::move(description)));
}

Option arguments(std::string name, std::vector<std::string>& taken, std::string description) {
    Option option{std::move(name), "", std::move(description),
                  [&taken](const std::string& given) { taken.push_back(given); }};
    option.isRequired = option.isRepeated = true;
    return option;
}

Option texts(std::string names, std::string value, std::vector<std::string>& taken,
             std::string description) {
    Option option{std::move(names), std::move(value), std::move(description),
                  [&taken](const std::string& given) { taken.push_back(given); }};
    option.isRepeated = true;
    return option;
}

Option required(Option option) {
    option.isRequired = true;
    return option;
}

Option excluding(std::string other, Option option) {
    option.excluded = std::move(other);
    return option;
}

}  // namespace zqpaths::program
