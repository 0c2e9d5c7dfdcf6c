#pragma once
// Which characters a terminal shows, and which it obeys or hides: control characters move the
// cursor and begin sequences, marks of direction turn the text around, and others have no width.
// A name that holds them can pass for another or change what stands beside it.
//
//     isShown(U'\u00E9')    // true
//     isShown(U'\u202E')    // false: what follows runs from right to left
//
// Threads: free functions without state.

#include <cstddef>
#include <string_view>

namespace zqpaths::program {

inline constexpr char32_t kFirstNotAscii = 0x80;

/// False for control characters, separators of lines and paragraphs, and whatever Unicode calls
/// ignorable by default, such as marks of direction, joiners, tags and variation selectors.
bool isShown(char32_t character) noexcept;

/// The one or two units of the character at the front of a text that is not empty; they are
/// removed from it. A surrogate without its other half is a character of its own.
std::u16string_view takeCharacter(std::u16string_view& text) noexcept;

/// The number of such a character.
char32_t codeOf(std::u16string_view character) noexcept;

/// How many bytes at the front are ASCII and shown as they are. O(bytes).
std::size_t shownAsciiPrefix(std::string_view text) noexcept;

}  // namespace zqpaths::program
