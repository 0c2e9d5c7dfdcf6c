#include "tools/zqpaths/output/JsonText.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>

#include "tools/zqpaths/output/TerminalCharacters.hpp"
#include "zqpaths/text/Base64.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths::program {
namespace {

void putReadable(JsonWriter& writer, std::string_view name) {
    if (isUtf8(name)) {
        putText(writer, name);
    } else {
        std::string readable;
        appendReadable(name, readable);
        putText(writer, readable);
    }
}

void appendUnit(char16_t unit, std::string& out) {
    std::array<char, 7> text{};
    static_cast<void>(
        std::snprintf(text.data(), text.size(), "\\u%04X", static_cast<unsigned>(unit)));
    out += text.data();
}

}  // namespace

void putText(JsonWriter& writer, std::string_view text) {
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void putName(JsonWriter& writer, std::string_view key, std::string_view bytesKey,
             std::string_view name) {
    putText(writer, key);
    putReadable(writer, name);
    if (isUtf8(name)) return;
    putText(writer, bytesKey);
    putText(writer, toBase64(name));
}

void appendShown(std::string_view json, Charset charset, std::string& out) {
    const std::size_t plain = shownAsciiPrefix(json);
    out += json.substr(0, plain);
    if (plain == json.size()) return;

    std::u16string text;
    appendUtf16(json.substr(plain), text);
    for (std::u16string_view rest = text; !rest.empty();) {
        const std::u16string_view character = takeCharacter(rest);
        const char32_t code = codeOf(character);
        if (isShown(code) && (charset == Charset::kUtf8 || code < kFirstNotAscii)) {
            appendBytes(character, out);
        } else {
            for (const char16_t unit : character) appendUnit(unit, out);
        }
    }
}

void JsonObject::add(std::string_view key, std::uint64_t value) {
    putText(writer_, key);
    writer_.Uint64(value);
}

void JsonObject::add(std::string_view key, std::string_view value) {
    putText(writer_, key);
    putText(writer_, value);
}

void JsonObject::add(std::string_view key, bool value) {
    putText(writer_, key);
    writer_.Bool(value);
}

void JsonObject::addName(std::string_view key, std::string_view bytesKey, std::string_view name) {
    putName(writer_, key, bytesKey, name);
}

void JsonObject::addNames(std::string_view key, std::string_view bytesKey,
                          std::span<const std::string> names) {
    putText(writer_, key);
    writer_.StartArray();
    for (const std::string& name : names) putReadable(writer_, name);
    writer_.EndArray();
    if (std::ranges::all_of(names, isUtf8)) return;

    putText(writer_, bytesKey);
    writer_.StartArray();
    for (const std::string& name : names) {
        if (isUtf8(name)) {
            writer_.Null();
        } else {
            putText(writer_, toBase64(name));
        }
    }
    writer_.EndArray();
}

void JsonObject::appendTo(std::string& out, Charset charset) {
    writer_.EndObject();
    appendShown({text_.GetString(), text_.GetSize()}, charset, out);
}

void JsonObject::clear() {
    text_.Clear();
    writer_.Reset(text_);
    writer_.StartObject();
}

}  // namespace zqpaths::program
