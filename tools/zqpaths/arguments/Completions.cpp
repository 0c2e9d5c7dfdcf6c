#include "tools/zqpaths/arguments/Completions.hpp"

#include <string_view>

namespace zqpaths::program {
namespace {

/// `text` with `escape` in front of each of `characters`.
std::string escaped(std::string_view text, std::string_view characters, std::string_view escape) {
    std::string out;
    for (const char character : text) {
        if (characters.find(character) != std::string_view::npos) out += escape;
        out.push_back(character);
    }
    return out;
}

/// One word of bash and zsh, whatever is in it: a quote ends the quoted text and stands alone.
std::string shellQuoted(std::string_view text) {
    std::string out = "'";
    for (const char character : text) {
        if (character == '\'') {
            out += R"('\'')";
        } else {
            out.push_back(character);
        }
    }
    return out + '\'';
}

std::string fishQuoted(std::string_view text) {
    return '\'' + escaped(text, "\\'", "\\") + '\'';
}

void appendWord(std::string& words, const std::string& word) {
    if (!words.empty()) words.push_back(' ');
    words += word;
}

std::string joined(const std::vector<std::string>& words, const char* separator) {
    std::string out;
    for (const std::string& word : words) out += (out.empty() ? "" : separator) + word;
    return out;
}

/// What the argument of a verb can be, if that is few words.
std::vector<std::string> wordsOf(const Verb& verb) {
    for (const Option& option : verb.options)
        if (option.isArgument() && !option.words.empty()) return option.words;
    return {};
}

/// The names of options whose value no shell can guess, as a pattern of bash; empty if there are
/// none.
std::string bashPatternOfValues(const Verb& verb) {
    std::string pattern;
    for (const Option& option : verb.options)
        if (!option.value.empty() && option.value != kFileValue && option.words.empty())
            pattern += (pattern.empty() ? "" : "|") + joined(option.namesApart(), "|");
    return pattern;
}

/// What the values of an option can be, where that is few words.
std::string bashValues(const Option& option) {
    return "            [[ $previous == @(" + joined(option.namesApart(), "|") +
           ") ]] && values=" + shellQuoted(joined(option.words, " ")) +
           (option.isWordList ? " list=1" : "") + '\n';
}

std::string bashVerb(const Verb& verb) {
    std::string options;
    for (const Option& option : verb.options)
        if (!option.isArgument())
            for (const std::string& name : option.namesApart()) appendWord(options, name);
    std::string text =
        "        " + verb.name + ")\n            options=" + shellQuoted(options) + '\n';
    const std::vector<std::string> words = wordsOf(verb);
    if (!words.empty()) text += "            words=" + shellQuoted(joined(words, " ")) + '\n';
    for (const Option& option : verb.options)
        if (!option.isArgument() && !option.words.empty()) text += bashValues(option);
    const std::string values = bashPatternOfValues(verb);
    if (!values.empty()) text += "            [[ $previous == @(" + values + ") ]] && value=1\n";
    return text + "            ;;\n";
}

std::string zshValues(const Option& option) {
    if (option.value == kFileValue) return "_files";
    if (option.words.empty()) return " ";
    const std::string words = joined(option.words, " ");
    return option.isWordList ? "_values -s , " + option.value + ' ' + words : '(' + words + ')';
}

std::string zshOption(const Option& option) {
    const std::string description = '[' + escaped(option.description, "[]\\:", "\\") + ']';
    std::string value;
    if (!option.value.empty()) value = ':' + option.value + ':' + zshValues(option);
    const std::vector<std::string> names = option.namesApart();
    const char* const again = option.isRepeated ? "*" : "";
    if (names.size() == 1) return shellQuoted(again + names.front() + description + value);
    return shellQuoted('(' + joined(names, " ") + ')') + '{' + joined(names, ",") + '}' +
           shellQuoted(description + value);
}

std::string zshVerb(const Verb& verb) {
    std::string text = "        " + verb.name + ")\n            _arguments -S";
    for (const Option& option : verb.options)
        if (!option.isArgument()) text += " \\\n                " + zshOption(option);
    const std::vector<std::string> words = wordsOf(verb);
    const std::string operand =
        words.empty() ? "*:file:_files" : "1:word:(" + joined(words, " ") + ')';
    return text + " \\\n                " + shellQuoted(operand) + "\n            ;;\n";
}

std::string fishValues(const Option& option) {
    if (!option.isWordList) return fishQuoted(joined(option.words, " "));
    return fishQuoted(R"((__fish_complete_list , 'printf "%s\n" )" + joined(option.words, " ") +
                      "')");
}

std::string fishOption(const std::string& condition, const Option& option) {
    std::string text = condition;
    for (const std::string& name : option.namesApart())
        text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!option.value.empty()) text += option.value == kFileValue ? " -r -F" : " -x";
    if (!option.words.empty()) text += " -a " + fishValues(option);
    return text + " -d " + fishQuoted(option.description) + '\n';
}

}  // namespace

std::string bashCompletion(const ProgramTable& table) {
    std::string verbs;
    std::string cases;
    for (const Verb& verb : table.verbs) {
        appendWord(verbs, verb.name);
        cases += bashVerb(verb);
    }
    const std::string function = "_" + table.name;
    return "# Completions of " + table.name + " for bash.\n\n" + function + R"(() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local options='' words='' value='' values='' list=''
    COMPREPLY=()
    # "--name=val" comes as three words.
    [[ $current == = ]] && current=''
    [[ $previous == = ]] && previous=${COMP_WORDS[COMP_CWORD - 2]}
    if ((COMP_CWORD == 1)); then
        compopt +o default 2>/dev/null
        COMPREPLY=($(compgen -W ')" +
           verbs + R"( --help --version' -- "$current"))
        return
    fi
    case ${COMP_WORDS[1]} in
)" + cases +
           R"(        *) ;;
    esac
    if [[ -n $values ]]; then
        local before=''
        [[ -n $list && $current == *,* ]] && before=${current%,*},
        COMPREPLY=($(compgen -P "$before" -W "$values" -- "${current#"$before"}"))
    elif [[ -n $value ]]; then
        compopt +o default 2>/dev/null
    elif [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$current"))
    elif [[ -n $words ]]; then
        COMPREPLY=($(compgen -W "$words" -- "$current"))
    fi
    # Where nothing is found, bash completes the names of files.
}
complete -o default -F )" +
           function + " " + table.name + '\n';
}

std::string zshCompletion(const ProgramTable& table) {
    std::string verbs;
    std::string cases;
    for (const Verb& verb : table.verbs) {
        verbs +=
            "        " + shellQuoted(verb.name + ':' + escaped(verb.summary, ":\\", "\\")) + '\n';
        cases += zshVerb(verb);
    }
    const std::string function = "_" + table.name;
    return "#compdef " + table.name + "\n# Completions of " + table.name + " for zsh.\n\n" +
           function + R"(() {
    local -a verbs
    verbs=(
)" + verbs +
           R"(    )
    if ((CURRENT == 2)); then
        _describe -t verbs verb verbs
        return
    fi
    shift words
    ((CURRENT--))
    case $words[1] in
)" + cases +
           R"(    esac
}

)" + function +
           " \"$@\"\n";
}

std::string fishCompletion(const ProgramTable& table) {
    const std::string complete = "complete -c " + table.name;
    const std::string first = complete + " -n __fish_use_subcommand -f";
    std::string text = "# Completions of " + table.name + " for fish.\n\n" + first +
                       " -l help -d 'print help'\n" + first +
                       " -l version -d 'print the version'\n";
    for (const Verb& verb : table.verbs)
        text += first + " -a " + verb.name + " -d " + fishQuoted(verb.summary) + '\n';
    for (const Verb& verb : table.verbs) {
        text.push_back('\n');
        const std::string condition =
            complete + " -n " + fishQuoted("__fish_seen_subcommand_from " + verb.name);
        if (const std::vector<std::string> words = wordsOf(verb); !words.empty())
            text += condition + " -f -a " + fishQuoted(joined(words, " ")) + '\n';
        for (const Option& option : verb.options)
            if (!option.isArgument()) text += fishOption(condition, option);
    }
    return text;
}

}  // namespace zqpaths::program
