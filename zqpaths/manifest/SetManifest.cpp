#include "zqpaths/manifest/SetManifest.hpp"

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <new>
#include <optional>
#include <span>

#include "zqpaths/Error.hpp"
#include "zqpaths/file/SetFileBytes.hpp"
#include "zqpaths/text/Base64.hpp"
#include "zqpaths/text/PathText.hpp"

namespace zqpaths {
namespace {

constexpr const char* kVersionKey = "zqs";
constexpr std::uint64_t kManifestVersion = 1;
constexpr int kSumDigits = 16;

/// What has no memory throws, where the library's own allocator gives null and nobody looks.
struct ThrowingAllocator {
    static void* Malloc(std::size_t size) { return ::operator new(size); }
    static void* Realloc(void* old, std::size_t oldSize, std::size_t size) {
        void* const moved = Malloc(size);
        if (old != nullptr) std::memcpy(moved, old, std::min(oldSize, size));
        Free(old);
        return moved;
    }
    static void Free(void* memory) noexcept { ::operator delete(memory); }
};

using Pool = rapidjson::MemoryPoolAllocator<ThrowingAllocator>;
using Value = rapidjson::GenericValue<rapidjson::UTF8<>, Pool>;
using Document = rapidjson::GenericDocument<rapidjson::UTF8<>, Pool, ThrowingAllocator>;
using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, ThrowingAllocator>;
using Writer =
    rapidjson::PrettyWriter<Buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, ThrowingAllocator>;

std::string_view textOf(const Value& value) {
    return {value.GetString(), value.GetStringLength()};
}

/// A member of an object; null if there is none.
const Value* memberOf(const Value& object, const char* key) {
    const auto member = object.FindMember(key);
    return member == object.MemberEnd() ? nullptr : &member->value;
}

[[noreturn]] void refuseNoManifest(const std::string& reason) {
    throw Error(ErrorKind::kNotASet, {}, "is no set of sets: " + reason);
}

// --- Reading.

/// An array of the manifest, and how messages call what is in it.
const Value& arrayOf(const Value& manifest, const char* key) {
    const Value* const array = memberOf(manifest, key);
    if (array == nullptr || !array->IsArray())
        refuseDamage("has no array \"" + std::string(key) + "\"");
    return *array;
}

std::string pathOf(const Value& file, const std::string& place) {
    const Value* const path = memberOf(file, "path");
    const Value* const bytes = memberOf(file, "pathBytes");
    if (path == nullptr || !path->IsString()) refuseDamage(place + " has no \"path\"");
    std::string name(textOf(*path));
    if (bytes != nullptr) {
        const auto decoded = bytes->IsString() ? fromBase64(textOf(*bytes)) : std::nullopt;
        if (!decoded) refuseDamage(place + " has a \"pathBytes\" that is not base64");
        name = *decoded;
    }
    if (name.empty() || name.find('\0') != std::string::npos)
        refuseDamage(place + " has a \"path\" that no file can have");
    return name;
}

std::uint64_t sumOf(const Value& file, const std::string& place) {
    const Value* const sum = memberOf(file, "sum");
    const std::string_view digits =
        sum != nullptr && sum->IsString() ? textOf(*sum) : std::string_view();
    std::uint64_t value = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.size() != kSumDigits || error != std::errc() || end != digits.data() + digits.size())
        refuseDamage(place + " has no \"sum\" of " + std::to_string(kSumDigits) +
                     " hexadecimal digits");
    return value;
}

ManifestFile fileOf(const Value& file, const std::string& place) {
    if (!file.IsObject()) refuseDamage(place + " is no object");
    return {pathOf(file, place), sumOf(file, place)};
}

ManifestRow rowOf(const Value& row, std::size_t fileCount, const std::string& place) {
    std::array<std::uint64_t, 5> counts{};
    const bool hasCounts = row.IsArray() && row.Size() == counts.size() &&
                           std::ranges::all_of(row.GetArray(), [](const Value& count) {
                               return count.IsUint64() && count.GetUint64() < kMaxManifestCount;
                           });
    if (!hasCounts)
        refuseDamage(place +
                     " is not five counts: file, first segment, segments, paths, gone paths");
    std::ranges::transform(row.GetArray(), counts.begin(),
                           [](const Value& count) { return count.GetUint64(); });
    const auto [file, firstSegment, segmentCount, pathCount, goneCount] = counts;
    if (file >= fileCount)
        refuseDamage(place + " is of file " + std::to_string(file) +
                     ", which the manifest has not");
    if (segmentCount == 0 || pathCount < segmentCount || goneCount > pathCount)
        refuseDamage(place + " has counts that cannot be");
    return {file, firstSegment, segmentCount, pathCount, goneCount};
}

void requireVersion(const Value& manifest) {
    const Value* const version = manifest.IsObject() ? memberOf(manifest, kVersionKey) : nullptr;
    if (version == nullptr || !version->IsUint64())
        refuseNoManifest("it has no version \"" + std::string(kVersionKey) + "\"");
    if (version->GetUint64() != kManifestVersion) refuseNewer();
}

// --- Writing.

void put(Writer& writer, const char* key, std::string_view text) {
    writer.Key(key);
    writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

void putFile(Writer& writer, const ManifestFile& file) {
    constexpr unsigned kDigitBits = 4;
    writer.StartObject();
    std::string readable;
    appendReadable(file.path, readable);
    put(writer, "path", readable);
    if (readable != file.path) put(writer, "pathBytes", toBase64(file.path));
    std::string sum;
    for (unsigned digit = kSumDigits; digit-- > 0;)
        sum.push_back("0123456789abcdef"[file.sum >> digit * kDigitBits & 0xF]);
    put(writer, "sum", sum);
    writer.EndObject();
}

/// In one line.
void putRow(Writer& writer, const ManifestRow& row) {
    writer.StartArray();
    writer.SetFormatOptions(rapidjson::kFormatSingleLineArray);
    for (const std::uint64_t count : {std::uint64_t{row.file}, row.firstSegment, row.segmentCount,
                                      row.pathCount, row.goneCount})
        writer.Uint64(count);
    writer.EndArray();
    writer.SetFormatOptions(rapidjson::kFormatDefault);
}

}  // namespace

SetManifest decodeManifest(std::string_view text) {
    // Names within names can be so deep that a parser which calls itself would need too much stack.
    // Fractions stand nowhere, so they need not be precise: the parser shifts a zero too far for
    // that.
    constexpr unsigned kFlags =
        rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag;
    Document document;
    document.Parse<kFlags>(text.data(), text.size());
    if (document.HasParseError()) {
        const std::string reason =
            std::string(rapidjson::GetParseError_En(document.GetParseError())) + " at byte " +
            std::to_string(document.GetErrorOffset());
        if (beginsLikeManifest(text)) refuseDamage(reason);
        refuseNoManifest(reason);
    }
    requireVersion(document);
    SetManifest manifest;
    for (const Value& file : arrayOf(document, "files").GetArray())
        manifest.files.push_back(fileOf(file, "file " + std::to_string(manifest.files.size())));
    std::uint64_t pathCount = 0;
    for (const Value& row : arrayOf(document, "rows").GetArray()) {
        const std::string place = "row " + std::to_string(manifest.rows.size());
        manifest.rows.push_back(rowOf(row, manifest.files.size(), place));
        pathCount += manifest.rows.back().pathCount;
        if (pathCount >= kMaxManifestCount) refuseDamage(place + " has counts that cannot be");
    }
    return manifest;
}

std::string encodeManifest(const SetManifest& manifest) {
    Buffer buffer;
    Writer writer(buffer);
    writer.SetIndent(' ', 1);
    writer.StartObject();
    writer.Key(kVersionKey);
    writer.Uint64(kManifestVersion);
    writer.Key("files");
    writer.StartArray();
    for (const ManifestFile& file : manifest.files) putFile(writer, file);
    writer.EndArray();
    writer.Key("rows");
    writer.StartArray();
    for (const ManifestRow& row : manifest.rows) putRow(writer, row);
    writer.EndArray();
    writer.EndObject();
    return std::string(buffer.GetString(), buffer.GetSize()) + '\n';
}

bool beginsLikeManifest(std::string_view front) noexcept {
    const auto skipSpace = [&front] {
        front.remove_prefix(std::min(front.find_first_not_of(" \t\r\n"), front.size()));
    };
    skipSpace();
    if (!front.starts_with('{')) return false;
    front.remove_prefix(1);
    skipSpace();
    return front.starts_with("\"zqs\"");
}

std::uint64_t fingerprintOf(const SetManifest& manifest) {
    constexpr std::size_t kNumbers = 3;
    std::vector<std::byte> bytes(manifest.rows.size() * kNumbers * sizeof(std::uint64_t));
    ByteWriter writer(bytes);
    for (const ManifestRow& row : manifest.rows)
        for (const std::uint64_t number :
             {manifest.files[row.file].sum, row.firstSegment, row.segmentCount})
            writer.integer(number, sizeof number);
    return zqpaths::sumOf(std::span<const std::byte>(bytes));
}

}  // namespace zqpaths
