#pragma once
// The fields of a golden record and the values in them; tests/data/golden/README.md says how they
// are written.
//
//     Fields record(line);
//     Bytes out = record.orEmpty("before", bytesOf);
//     sixpacks::boolVecToBytes(out, bitsOf(record["bits"]));
//     EXPECT_EQ(hexOf(out), textOf(record["after"]));
//     record.requireAllRead();  // a field that nobody looks at would be an expectation unmet
//
// Whatever is not written as the page says throws UnreadableRecord. Results are compared as the
// text that the record holds, so that a difference is printed in the form of the record.

#include <rapidjson/document.h>

#include <cstddef>
#include <cstdint>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "compressedpaths/BPathTree.hpp"

namespace compressedpaths::golden {

using Json = rapidjson::Value;
using Track = std::vector<std::size_t>;
using Texts = std::vector<std::string>;

class UnreadableRecord : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An object of a record that remembers which of its fields have not been read yet.
class Fields {
public:
    explicit Fields(const Json& object);  // which outlives the fields

    /// The value of a field; the second gives null if there is none.
    const Json& operator[](const char* name);
    const Json* find(const char* name);

    bool has(const char* name) const { return object_.HasMember(name); }

    /// The decoded field, or an empty value if there is none.
    template <class Decode>
    auto orEmpty(const char* name, Decode decode) {
        const Json* value = find(name);
        return value != nullptr ? decode(*value) : std::invoke_result_t<Decode, const Json&>();
    }

    void requireAllRead() const;

private:
    const Json& object_;
    std::set<std::string, std::less<>> unread_;
};

template <class Decode>
auto listOf(const Json& array, Decode decode) {
    if (!array.IsArray()) throw UnreadableRecord("not a list");
    std::vector<std::invoke_result_t<Decode, const Json&>> values;
    values.reserve(array.Size());
    for (const Json& value : array.GetArray()) values.push_back(decode(value));
    return values;
}

std::uint64_t integerOf(const Json& value);
bool flagOf(const Json& value);
std::string textOf(const Json& value);
double floatOf(const Json& value);             // hexadecimal text
Bytes bytesOf(const Json& value);              // hexadecimal text
std::vector<bool> bitsOf(const Json& value);   // text of 0 and 1
std::u16string unitsOf(const Json& value);     // a list of code units, or a repeated one
std::size_t positionOf(const Json& value);     // null is SIZE_MAX
Path pathOf(const Json& value);                // a list of byte vectors
std::vector<Path> pathsOf(const Json& value);  // a list of those
Track trackOf(const Json& value);              // a list of integers
std::vector<Track> tracksOf(const Json& value);
Texts textsOf(const Json& value);
std::vector<Texts> textListsOf(const Json& value);

/// A list of UTF-16 strings, also in its shorter forms.
std::vector<std::u16string> namesOf(const Json& value);

/// The characters of an alphabet and their frequencies, also in their shorter forms.
std::u16string charactersOf(const Json& value);
std::vector<double> frequenciesOf(const Json& value);

std::string hexOf(const Bytes& bytes);
Texts hexOf(const Path& path);
std::vector<Texts> hexOf(const std::vector<Path>& paths);
std::string bitTextOf(const std::vector<bool>& bits);

}  // namespace compressedpaths::golden
