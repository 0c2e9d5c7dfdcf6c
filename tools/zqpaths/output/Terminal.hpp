#pragma once
// What the terminal and the environment say about how text is to look.
//
// Threads: free functions; nothing in the program changes the environment, and standard output is
// taken for handed on before there are threads.

#include <cstddef>
#include <optional>
#include <string>

namespace zqpaths::program {

/// Whether a descriptor leads to a terminal that a person looks at.
bool isTerminal(int descriptor);

/// From now on standard output is none, whatever it seems: it is handed on by another program,
/// which may have made a terminal of its own for it.
void takeOutputForHandedOn();

/// When colours are wanted; kAuto is on a terminal whose environment does not say NO_COLOR.
enum class Colours { kAuto, kAlways, kNever };

/// Whether standard output gets colours.
bool hasColours(Colours wanted);

/// Which characters a terminal takes.
enum class Charset { kAscii, kUtf8 };

/// By the locale that the environment names; ASCII if it is not installed, or of another charset:
/// what a terminal would make of UTF-8 then is not known.
Charset charsetOfLocale();

/// What may go to a descriptor: to a terminal what it takes, to anything else all of UTF-8.
Charset charsetOf(int descriptor);

/// The value of a variable of the environment, if it is set and not empty.
std::optional<std::string> environmentValue(const char* variable);

/// The cells of a line of a terminal, or what is usual if it does not tell.
std::size_t terminalWidth(int descriptor);

/// The cells of a line of standard output; nothing if that is no terminal.
std::optional<std::size_t> outputWidth();

}  // namespace zqpaths::program
