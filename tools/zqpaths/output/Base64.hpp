#pragma once
// Bytes as base64 (RFC 4648, section 4), with the padding.

#include <string>
#include <string_view>

namespace zqpaths::program {

/// toBase64("\xFF") == "/w==". O(bytes).
std::string toBase64(std::string_view bytes);

}  // namespace zqpaths::program
