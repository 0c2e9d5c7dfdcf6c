#include "tools/zqpaths/arguments/ManualPage.hpp"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace zqpaths::program {
namespace {

constexpr std::string_view kDescription =
    R"(A set holds the paths of directories or of a list in a file that is many times smaller
than the list.
Each path has a number, from 1 on in the order in which it was added, and is found by it.
A path is any bytes but NUL; it comes back as it was.
.PP
Paths are printed on standard output, messages and progress on standard error.
Progress is shown on a terminal only, and when the work takes over a second;
with
.B \-\-progress=json
it is written wherever standard error leads, an object a line.
.PP
On a terminal no name can move the cursor or hide a part of itself: control characters and bytes
that are not UTF\-8 are written as \ex0A, other characters that move or hide text as \eu202E,
and a backslash is doubled.
Pipes and files get the bytes.
A newline in a path that is ended by a newline is told at the end, or refused with
.BR \-\-strict ;
so is a tab in a field that others follow.
.PP
.B \-\-fields
prints of each path what it names, with tabs between.
.I folder
is all before the last name, as the path gives it, and
.I extension
what follows the last dot of the name: dots at the front of a name begin none, and one at its
end neither.
.B \-\-csv
prints them as RFC 4180 has it, bytes as they are.
With
.B \-\-json
a path that is not UTF\-8 has U+FFFD in place of each bad byte, and a field
.I bytes
with all its bytes in base64; what a terminal would obey or hide is escaped.
)";

constexpr std::string_view kEndings =
    R"(.SH EXIT STATUS
.TP
.B 0
Done.
.TP
.B 1
A negative answer: nothing was found, sets differ.
.TP
.B 2
Wrong use, or something could not be read or written.
.TP
.B 3
A set is damaged.
.TP
.B 4
More than the program or the machine can hold.
.PP
Where whoever reads standard output has gone, the program ends by SIGPIPE, which a shell gives as
141.
.SH ENVIRONMENT
.TP
.B NO_COLOR
If it is set and not empty, nothing is coloured, unless an option says so.
.TP
.B LS_COLORS
The colours of folders and of files by their suffixes, as dircolors(1) prints them.
)";

/// Text that troff prints as it is: hyphens that can be copied, no line that is a request.
std::string escaped(std::string_view text) {
    std::string out;
    if (!text.empty() && (text.front() == '.' || text.front() == '\'')) out += "\\&";
    for (const char character : text) {
        if (character == '\\') {
            out += "\\e";
        } else if (character == '-') {
            out += "\\-";
        } else if (character == '\'') {
            out += "\\(aq";
        } else {
            out.push_back(character);
        }
    }
    return out;
}

std::string upperCase(std::string text) {
    std::ranges::transform(text, text.begin(), [](unsigned char character) {
        return static_cast<char>(std::toupper(character));
    });
    return text;
}

std::string sentence(std::string text) {
    if (!text.empty())
        text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    return escaped(text) + ".\n";
}

std::string optionText(const Option& option) {
    std::string names;
    for (const std::string& name : option.namesApart())
        names += (names.empty() ? "\\fB" : ", \\fB") + escaped(name) + "\\fR";
    if (!option.value.empty()) names += " \\fI" + escaped(option.value) + "\\fR";
    return ".TP\n" + names + '\n' + sentence(option.describedFully());
}

std::string verbText(const std::string& program, const Verb& verb) {
    std::string text = ".SS " + program + " " + verb.name + " " + escaped(verb.synopsis) + '\n' +
                       sentence(verb.summary);
    if (!verb.details.empty()) text += ".PP\n" + escaped(verb.details) + '\n';
    for (const Option& option : verb.options)
        if (!option.isArgument()) text += optionText(option);
    text += ".PP\nExamples:\n.PP\n.RS\n.nf\n";
    for (const std::string& example : verb.examples) text += escaped(example) + '\n';
    return text + ".fi\n.RE\n";
}

}  // namespace

std::string manualPage(const ProgramTable& table) {
    std::string text = ".TH " + upperCase(table.name) + R"( 1 "" ")" + table.name + " " +
                       table.version + R"(" "User Commands")" + "\n.SH NAME\n" + table.name +
                       R"( \- )" + escaped(table.summary) + "\n.SH SYNOPSIS\n";
    for (const Verb& verb : table.verbs)
        text += ".B " + table.name + " " + verb.name + "\n" + escaped(verb.synopsis) + "\n.br\n";
    text += ".SH DESCRIPTION\n";
    for (const std::string& paragraph : table.description) text += escaped(paragraph) + "\n.PP\n";
    text.append(kDescription).append(".SH VERBS\n");
    for (const Verb& verb : table.verbs) text += verbText(table.name, verb);
    return text.append(kEndings);
}

}  // namespace zqpaths::program
