#pragma once
// Objects in JSON, one a line. They are UTF-8, though names of files are any bytes, and whatever a
// terminal would obey or hide is written as \uXXXX, so that they can be printed anywhere; for a
// terminal whose locale is not UTF-8, all that is not ASCII is.
//
//     JsonObject object;
//     object.add("number", 7);
//     object.addName("path", "bytes", "caf\xC3\xA9\xFF");
//     object.appendTo(out);  // {"number":7,"path":"café?","bytes":"Y2Fmw6n/"}, with U+FFFD for the
//     ?
//
// Threads: an object belongs to one thread at a time.

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tools/zqpaths/output/Terminal.hpp"

namespace zqpaths::program {

using JsonWriter = rapidjson::Writer<rapidjson::StringBuffer>;

/// A key, or a value that is UTF-8.
void putText(JsonWriter& writer, std::string_view text);

/// A name under `key`, with U+FFFD for each byte that is not UTF-8, and if there are such bytes,
/// all of them in base64 under `bytesKey`.
void putName(JsonWriter& writer, std::string_view key, std::string_view bytesKey,
             std::string_view name);

/// Appends what a writer has written, with \uXXXX for each character that isShown() is false for
/// or that is not of the charset. O(bytes).
void appendShown(std::string_view json, Charset charset, std::string& out);

/// One object on one line, field by field.
class JsonObject {
public:
    JsonObject() : writer_(text_) { clear(); }

    void add(std::string_view key, std::uint64_t value);
    void add(std::string_view key, std::string_view value);
    void add(std::string_view key, const char* value) { add(key, std::string_view(value)); }
    void add(std::string_view key, bool value);

    /// As putName does.
    void addName(std::string_view key, std::string_view bytesKey, std::string_view name);

    /// Names, and under `bytesKey` the bytes of each that is not UTF-8, null for the others, if
    /// there are any.
    void addNames(std::string_view key, std::string_view bytesKey,
                  std::span<const std::string> names);

    /// Ends the object and appends it, without an end of the line.
    void appendTo(std::string& out, Charset charset = Charset::kUtf8);

    /// Begins another object.
    void clear();

private:
    rapidjson::StringBuffer text_;
    JsonWriter writer_;
};

}  // namespace zqpaths::program
