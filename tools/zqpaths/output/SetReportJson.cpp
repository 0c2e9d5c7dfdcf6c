#include <cmath>
#include <string_view>

#include "tools/zqpaths/output/JsonText.hpp"
#include "tools/zqpaths/output/SetReport.hpp"

namespace zqpaths::program {
namespace {

void put(JsonWriter& writer, std::uint64_t value) {
    writer.Uint64(value);
}

void put(JsonWriter& writer, double value) {
    writer.Double(value);
}

/// To a tenth: the clock tells no more.
void put(JsonWriter& writer, SetReport::Microseconds value) {
    constexpr double kTenths = 10;
    writer.Double(std::round(value.count() * kTenths) / kTenths);
}

template <class Value>
void put(JsonWriter& writer, std::string_view key, Value value) {
    putText(writer, key);
    put(writer, value);
}

template <class Value>
void put(JsonWriter& writer, std::string_view key, std::optional<Value> value) {
    putText(writer, key);
    if (value) {
        put(writer, *value);
    } else {
        writer.Null();
    }
}

std::optional<double> bitsPerCharacter(const SetStatistics& statistics) {
    if (!statistics.codedCount || *statistics.codedCount == 0) return std::nullopt;
    return static_cast<double>(*statistics.codedBits) / static_cast<double>(*statistics.codedCount);
}

void putTree(JsonWriter& writer, const SetStatistics& statistics) {
    putText(writer, "tree");
    writer.StartObject();
    put(writer, "folders", statistics.folderCount);
    put(writer, "depth", statistics.depth);
    put(writer, "widest", statistics.widest);
    writer.EndObject();
}

void putSaved(JsonWriter& writer, const SetReport& report) {
    const SetStatistics::Bytes& bytes = report.statistics.bytes;
    putText(writer, "saved");
    writer.StartObject();
    put(writer, "file", report.fileSize);
    put(writer, "names", bytes.names);
    put(writer, "folders", bytes.folders);
    put(writer, "index", bytes.index);
    put(writer, "orders", bytes.orders);
    put(writer, "code", bytes.code);
    put(writer, "sums", bytes.sums);
    put(writer, "packed", bytes.packed);
    writer.EndObject();
}

void putSegments(JsonWriter& writer, const SetReport& report) {
    putText(writer, "segments");
    writer.StartObject();
    put(writer, "count", report.statistics.segmentCount);
    put(writer, "packed", report.statistics.packedCount);
    writer.EndObject();
    putText(writer, "microseconds");
    writer.StartObject();
    put(writer, "opening", report.opening);
    put(writer, "firstPath", report.firstPath);
    writer.EndObject();
    putText(writer, "memory");
    writer.StartObject();
    put(writer, "ofFile", report.residentSize);
    put(writer, "allocated", report.allocatedSize);
    writer.EndObject();
}

void putFiles(JsonWriter& writer, const SetReport::Files& files) {
    putText(writer, "files");
    writer.StartObject();
    put(writer, "count", files.count);
    put(writer, "missing", files.missingCount);
    put(writer, "pathsMissing", files.missingPathCount);
    writer.EndObject();
}

void putFolders(JsonWriter& writer, const SetStatistics& statistics) {
    putText(writer, "largestFolders");
    writer.StartArray();
    for (const SetStatistics::Folder& folder : statistics.largestFolders) {
        writer.StartObject();
        putName(writer, "folder", "bytes", folder.name);
        put(writer, "files", folder.fileCount);
        writer.EndObject();
    }
    writer.EndArray();
}

}  // namespace

std::string reportJson(const SetReport& report, Charset charset) {
    const SetStatistics& statistics = report.statistics;
    rapidjson::StringBuffer text;
    JsonWriter writer(text);
    writer.StartObject();
    putName(writer, "set", "setBytes", report.file);
    put(writer, "paths", statistics.pathCount);
    put(writer, "gone", report.goneCount);
    put(writer, "textBytes", statistics.textSize);
    put(writer, "characters", statistics.characterCount);
    put(writer, "charactersOfNames", statistics.codedCount);
    put(writer, "bitsPerCharacter", bitsPerCharacter(statistics));
    put(writer, "entries", statistics.entryCount);
    putFiles(writer, report.files);
    putSegments(writer, report);
    putTree(writer, statistics);
    putSaved(writer, report);
    putFolders(writer, statistics);
    writer.EndObject();
    std::string shown;
    appendShown({text.GetString(), text.GetSize()}, charset, shown);
    return shown;
}

}  // namespace zqpaths::program
