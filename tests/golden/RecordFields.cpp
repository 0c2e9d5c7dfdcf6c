#include "tests/golden/RecordFields.hpp"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string_view>

namespace compressedpaths::golden {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

std::uint8_t nibbleOf(char digit) {
    const std::size_t value = kHexDigits.find(digit);
    if (value == std::string_view::npos) throw UnreadableRecord("not lower-case hexadecimal");
    return static_cast<std::uint8_t>(value);
}

char16_t unitOf(const Json& value) {
    const std::uint64_t unit = integerOf(value);
    if (unit > std::numeric_limits<char16_t>::max()) throw UnreadableRecord("not a code unit");
    return static_cast<char16_t>(unit);
}

std::u16string plainUnitsOf(const Json& value) {
    const std::vector<char16_t> units = listOf(value, unitOf);
    return {units.begin(), units.end()};
}

}  // namespace

Fields::Fields(const Json& object) : object_(object) {
    if (!object.IsObject()) throw UnreadableRecord("not an object");
    for (const auto& member : object.GetObject()) unread_.insert(member.name.GetString());
}

const Json& Fields::operator[](const char* name) {
    const Json* value = find(name);
    if (value == nullptr) throw UnreadableRecord(std::string("no field ") + name);
    return *value;
}

const Json* Fields::find(const char* name) {
    unread_.erase(name);
    const auto member = object_.FindMember(name);
    return member == object_.MemberEnd() ? nullptr : &member->value;
}

void Fields::requireAllRead() const {
    if (!unread_.empty()) throw UnreadableRecord("unknown field " + *unread_.begin());
}

std::uint64_t integerOf(const Json& value) {
    if (!value.IsUint64()) throw UnreadableRecord("not an unsigned integer");
    return value.GetUint64();
}

bool flagOf(const Json& value) {
    if (!value.IsBool()) throw UnreadableRecord("neither true nor false");
    return value.GetBool();
}

std::string textOf(const Json& value) {
    if (!value.IsString()) throw UnreadableRecord("not a text");
    return {value.GetString(), value.GetStringLength()};
}

double floatOf(const Json& value) {
    const std::string text = textOf(value);
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0') throw UnreadableRecord("not a float: " + text);
    return number;
}

Bytes bytesOf(const Json& value) {
    const std::string text = textOf(value);
    if (text.size() % 2 != 0) throw UnreadableRecord("half a byte");
    Bytes bytes;
    bytes.reserve(text.size() / 2);
    for (std::size_t i = 0; i < text.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(nibbleOf(text[i]) << 4 | nibbleOf(text[i + 1])));
    return bytes;
}

std::vector<bool> bitsOf(const Json& value) {
    const std::string text = textOf(value);
    if (text.find_first_not_of("01") != std::string::npos) throw UnreadableRecord("not bits");
    std::vector<bool> bits;
    std::ranges::transform(text, std::back_inserter(bits), [](char bit) { return bit == '1'; });
    return bits;
}

std::u16string unitsOf(const Json& value) {
    if (!value.IsObject()) return plainUnitsOf(value);

    Fields repeated(value);
    const std::u16string unit = plainUnitsOf(repeated["unit"]);
    std::u16string units;
    for (std::uint64_t left = integerOf(repeated["times"]); left > 0; --left) units += unit;
    repeated.requireAllRead();
    return units;
}

std::size_t positionOf(const Json& value) {
    return value.IsNull() ? std::numeric_limits<std::size_t>::max() : integerOf(value);
}

Path pathOf(const Json& value) {
    return listOf(value, bytesOf);
}

std::vector<Path> pathsOf(const Json& value) {
    return listOf(value, pathOf);
}

Track trackOf(const Json& value) {
    return listOf(value, integerOf);
}

std::vector<Track> tracksOf(const Json& value) {
    return listOf(value, trackOf);
}

Texts textsOf(const Json& value) {
    return listOf(value, textOf);
}

std::vector<Texts> textListsOf(const Json& value) {
    return listOf(value, textsOf);
}

std::vector<std::u16string> namesOf(const Json& value) {
    if (!value.IsObject()) return listOf(value, unitsOf);

    Fields shortened(value);
    std::vector<std::u16string> names;
    if (shortened.has("each")) {
        names.assign(integerOf(shortened["times"]), unitsOf(shortened["each"]));
    } else {
        const std::u16string prefix = plainUnitsOf(shortened["prefix"]);
        const std::uint64_t first = integerOf(shortened["first"]);
        const std::uint64_t count = integerOf(shortened["count"]);
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::string digits = std::to_string(first + i);
            names.push_back(prefix + std::u16string(digits.begin(), digits.end()));
        }
    }
    shortened.requireAllRead();
    return names;
}

std::u16string charactersOf(const Json& value) {
    if (!value.IsObject()) return plainUnitsOf(value);

    Fields range(value);
    std::u16string characters;
    for (std::uint64_t i = 0; i < integerOf(range["count"]); ++i)
        characters.push_back(static_cast<char16_t>(unitOf(range["first"]) + i));
    range.requireAllRead();
    return characters;
}

std::vector<double> frequenciesOf(const Json& value) {
    if (!value.IsObject()) return listOf(value, floatOf);

    Fields repeated(value);
    std::vector<double> values(integerOf(repeated["times"]), floatOf(repeated["each"]));
    repeated.requireAllRead();
    return values;
}

std::string hexOf(const Bytes& bytes) {
    std::string text;
    text.reserve(2 * bytes.size());
    for (const unsigned byte : bytes) {
        text.push_back(kHexDigits[byte >> 4]);
        text.push_back(kHexDigits[byte & 0xF]);
    }
    return text;
}

Texts hexOf(const Path& path) {
    Texts texts;
    texts.reserve(path.size());
    for (const Bytes& component : path) texts.push_back(hexOf(component));
    return texts;
}

std::vector<Texts> hexOf(const std::vector<Path>& paths) {
    std::vector<Texts> texts;
    texts.reserve(paths.size());
    for (const Path& path : paths) texts.push_back(hexOf(path));
    return texts;
}

std::string bitTextOf(const std::vector<bool>& bits) {
    std::string text;
    for (const bool bit : bits) text.push_back(bit ? '1' : '0');
    return text;
}

}  // namespace compressedpaths::golden
