#pragma once
// ZipHeader finds the name in the header of a zip's entry as it stands there, byte for byte. The
// library that reads archives gives names that are marked as UTF-8 in the characters of the system,
// and composes those that stand there decomposed.
//
// A header is, in little-endian byte order (APPNOTE.TXT, 4.3.7):
//
//     0   "PK\3\4"
//     26  n, the length of the name; 28  m, that of further fields
//     30  the name; 30 + n  the fields, each with two bytes of kind, two of length, and its bytes
//
// Threads: free functions without state.

#include <optional>
#include <string>
#include <string_view>

namespace zqpaths::program {

/// The name in the header that ends `bytes`; nothing if none does. A field with the name in UTF-8
/// takes the place of one in other characters. O(bytes).
std::optional<std::string> nameInZipHeader(std::string_view bytes);

/// Whether the end of a zip is in `bytes`: the record that closes its directory, of 22 bytes and as
/// many of a comment as the two at 20 say. O(bytes), as a rule.
bool hasEndOfZip(std::string_view bytes);

}  // namespace zqpaths::program
