#pragma once
// The texts of the errors of a code and its coding tree, as callers meet them.

namespace compressedpaths {

inline constexpr const char* kTooSmall = "An alphabet needs at least two characters.";
inline constexpr const char* kBuiltAlready = "The coding tree has been built already.";
inline constexpr const char* kEmptyString = "No code for an empty string.";
inline constexpr const char* kNoCode = "Code for the character not found.";
inline constexpr const char* kTooLong = "The code words of the coding tree are too long.";
inline constexpr const char* kNoTree = "There is no usable coding tree to decode with.";
inline constexpr const char* kInvalidCode =
    "The code bytes lead to no character of the coding tree.";

}  // namespace compressedpaths
