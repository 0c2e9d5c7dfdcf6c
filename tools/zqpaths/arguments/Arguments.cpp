#include "tools/zqpaths/arguments/Arguments.hpp"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/Output.hpp"

namespace zqpaths::program {
namespace {

constexpr const char* kNoTypeText = " ";  // instead of the type that the parser would print

/// The parser takes "[a,b]" apart, and refuses "--" once a verb has one of its files; files
/// have all sorts of names. So an argument that it could take for something else is
/// marked, and one that begins with a mark as well.
constexpr char kMark = '\1';
constexpr std::string_view kEndOfOptions = "--";

/// The value in "--name=[a,b]".
void markValue(std::string& text) {
    const std::size_t equals = text.find('=');
    if (equals != std::string::npos && text.find('[', equals) == equals + 1)
        text.insert(equals + 1, 1, kMark);
}

/// The arguments after the program's name, the last one first, as the parser wants them.
std::vector<std::string> markedArguments(int argumentCount, const char* const* arguments) {
    std::vector<std::string> marked;
    bool mayBeOption = true;
    for (int i = 1; i < argumentCount; ++i) {
        std::string text = arguments[i];
        if (mayBeOption && text == kEndOfOptions) {
            mayBeOption = false;
            continue;
        }
        const bool needsMark = text.starts_with('[') || text.starts_with(kMark) ||
                               (!mayBeOption && text.starts_with('-'));
        if (needsMark) text.insert(text.begin(), kMark);
        if (mayBeOption && text.starts_with("--")) markValue(text);
        marked.push_back(std::move(text));
    }
    std::ranges::reverse(marked);
    return marked;
}

std::string unmarked(const std::string& argument) {
    return argument.starts_with(kMark) ? argument.substr(1) : argument;
}

/// Text in lines that fit a terminal.
std::string inLines(const std::string& text) {
    constexpr std::size_t kLineLength = 80;
    std::istringstream words(text);
    std::string lines;
    std::size_t length = 0;
    for (std::string word; words >> word; length += word.size() + 1) {
        const bool fits = length + word.size() <= kLineLength;
        if (!fits) length = 0;
        if (!lines.empty()) lines += fits ? ' ' : '\n';
        lines += word;
    }
    return lines + '\n';
}

std::string footer(const Verb& verb) {
    std::string text = verb.details.empty() ? "" : inLines(verb.details) + "\n";
    text += "Examples:";
    for (const std::string& example : verb.examples) text += "\n  " + example;
    return text;
}

CLI::Option* declare(CLI::App& app, const Option& option) {
    if (option.isSwitch())
        return app.add_flag_callback(
            option.names, [&option] { option.take(""); }, option.description);
    if (option.isRepeated)
        return app
            .add_option_function<std::vector<std::string>>(
                option.names,
                [&option](const std::vector<std::string>& given) {
                    for (const std::string& text : given) option.take(unmarked(text));
                },
                option.description)
            // An option has one value each time, what follows it is not its own.
            ->allow_extra_args(option.isArgument());
    return app.add_option_function<std::string>(
        option.names, [&option](const std::string& given) { option.take(unmarked(given)); },
        option.description);
}

void addOption(CLI::App& app, const Option& option) {
    CLI::Option* const declared = declare(app, option);
    declared->required(option.isRequired);
    if (!option.excluded.empty()) declared->excludes(app.get_option(option.excluded));
    if (!option.needed.empty()) declared->needs(app.get_option(option.needed));
    if (!option.words.empty()) declared->check(CLI::IsMember(option.words));
    if (!option.isSwitch() && !option.value.empty()) declared->option_text(option.value);
    // An argument is shown by its name alone, where more of its kind may follow with dots.
    if (option.isArgument())
        declared->option_text(option.isRepeated && option.isRequired ? "..." : kNoTypeText);
}

/// Takes the text that tells of a failure, or shows what was asked for instead.
std::function<ExitStatus()> helpOrFailure(const CLI::App& app, const CLI::ParseError& error) {
    // Help and version come as errors without a failure.
    if (error.get_exit_code() != 0) throw wrongUse(error.what());
    std::ostringstream text;
    app.exit(error, text, text);
    return [shown = text.str()] {
        Output output({});
        output.text(shown);
        output.finish();
        return ExitStatus::kDone;
    };
}

}  // namespace

std::function<ExitStatus()> parseArguments(const ProgramTable& table, int argumentCount,
                                           const char* const* arguments) {
    CLI::App app(table.summary, table.name);
    app.set_help_flag("-h,--help", "print this help");
    app.set_version_flag("--version", table.name + " " + table.version, "print the version");
    app.require_subcommand(1);
    for (const Verb& verb : table.verbs) {
        CLI::App* const subcommand = app.add_subcommand(verb.name, verb.summary);
        subcommand->footer(footer(verb));
        for (const Option& option : verb.options) addOption(*subcommand, option);
    }

    std::vector<std::string> texts = markedArguments(argumentCount, arguments);
    try {
        app.parse(texts);
    } catch (const CLI::ParseError& error) {
        return helpOrFailure(app, error);
    }
    for (const Verb& verb : table.verbs)
        if (app.got_subcommand(verb.name)) return verb.run;
    throw Failure(ExitStatus::kFailed, "no verb is given");
}

}  // namespace zqpaths::program
