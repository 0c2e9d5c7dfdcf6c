#pragma once
// What the terminal and the environment say about how text is to look.
//
// Threads: free functions without state; nothing in the program changes the environment.

#include <cstddef>
#include <optional>
#include <string>

namespace zqpaths::program {

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
