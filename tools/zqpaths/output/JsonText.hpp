#pragma once
// Text in JSON, which is UTF-8, though names of files are any bytes.
//
// Threads: free functions without state.

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <string_view>

namespace zqpaths::program {

using JsonWriter = rapidjson::Writer<rapidjson::StringBuffer>;

/// A key, or a value that is UTF-8.
void putText(JsonWriter& writer, std::string_view text);

/// A name as a value, with U+FFFD for each byte that is not UTF-8.
void putReadable(JsonWriter& writer, std::string_view name);

/// A name under `key`, and its bytes in base64 under `bytesKey` if they are not UTF-8.
void putName(JsonWriter& writer, std::string_view key, std::string_view bytesKey,
             std::string_view name);

}  // namespace zqpaths::program
