#pragma once
// Bytes as base64 (RFC 4648, section 4), with the padding:
//
//     toBase64("\xFF");    // "/w=="
//     fromBase64("/w=="); // "\xFF"
//
// Threads: free functions without state.

#include <optional>
#include <string>
#include <string_view>

#include "zqpaths/Export.hpp"

namespace zqpaths {

/// Throws only std::bad_alloc, as the next one. O(bytes).
ZQPATHS_EXPORT std::string toBase64(std::string_view bytes);

/// What toBase64 has made these digits of; nothing if it makes no such digits. O(digits).
ZQPATHS_EXPORT std::optional<std::string> fromBase64(std::string_view digits);

}  // namespace zqpaths
