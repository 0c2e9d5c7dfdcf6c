#include "tools/zqpaths/arguments/HelpText.hpp"

#include <cstddef>
#include <sstream>
#include <vector>

namespace zqpaths::program {
namespace {

constexpr std::size_t kLineLength = 80;
constexpr std::size_t kColumn = 26;  // where descriptions begin
constexpr const char* kIndent = "  ";

/// Words in lines, the first of which has `firstColumn` characters already, the others `column`
/// spaces.
std::string inLines(const std::string& text, std::size_t firstColumn = 0, std::size_t column = 0) {
    std::istringstream words(text);
    std::string lines;
    std::size_t length = firstColumn;
    bool isAtBegin = true;  // of a line
    for (std::string word; words >> word; isAtBegin = false) {
        const bool fits = length + (isAtBegin ? 0 : 1) + word.size() <= kLineLength;
        if (!isAtBegin && !fits) {
            lines.append(1, '\n').append(column, ' ');
            length = column;
        } else if (!isAtBegin) {
            lines.push_back(' ');
            ++length;
        }
        lines += word;
        length += word.size();
    }
    return lines;
}

/// What is described and its description beside it, or below where there is no room.
std::string row(const std::string& what, const std::string& description) {
    std::string text = kIndent + what;
    if (text.size() + 2 > kColumn)
        text.append(1, '\n').append(kColumn, ' ');
    else
        text.resize(kColumn, ' ');
    return text + inLines(description, kColumn, kColumn) + '\n';
}

std::string row(const Option& option) {
    std::string what;
    for (const std::string& name : option.namesApart()) what += (what.empty() ? "" : ", ") + name;
    if (!option.value.empty()) what += ' ' + option.value;
    return row(what, option.describedFully());
}

std::string rowsOf(const char* heading, const std::vector<Option>& options, bool areArguments) {
    std::string text;
    for (const Option& option : options)
        if (option.isArgument() == areArguments) text += row(option);
    return text.empty() ? text : "\n" + std::string(heading) + ":\n" + text;
}

}  // namespace

Option helpOption() {
    return flag(
        "-h,--help", [] {}, "print this help");
}

Option versionOption() {
    return flag(
        "--version", [] {}, "print the version");
}

std::string usage(const ProgramTable& table, const Verb& verb) {
    return "Usage: " + table.name + ' ' + verb.name + " [OPTIONS] " + verb.synopsis;
}

std::string helpText(const ProgramTable& table) {
    std::string text = table.summary + "\nUsage: " + table.name + " VERB [OPTIONS] ...\n\nVerbs:\n";
    for (const Verb& verb : table.verbs) text += row(verb.name, verb.summary);
    return text + rowsOf("Options", {helpOption(), versionOption()}, false) + "\n'" + table.name +
           " help VERB' tells the options of a verb and shows examples.\n";
}

std::string helpText(const ProgramTable& table, const Verb& verb) {
    std::vector<Option> options = verb.options;
    options.push_back(helpOption());
    std::string text = verb.summary + '\n' + usage(table, verb) + '\n' +
                       rowsOf("Arguments", options, true) + rowsOf("Options", options, false);
    if (!verb.details.empty()) text += '\n' + inLines(verb.details) + '\n';
    text += "\nExamples:\n";
    for (const std::string& example : verb.examples) text += kIndent + example + '\n';
    return text;
}

}  // namespace zqpaths::program
