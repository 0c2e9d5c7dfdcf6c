#include <string_view>

#include "tools/zqpaths/FolderText.hpp"
#include "tools/zqpaths/JsonText.hpp"
#include "tools/zqpaths/SetReport.hpp"

namespace zqpaths {
namespace {

void put(JsonWriter& writer, std::uint64_t value) {
    writer.Uint64(value);
}

void put(JsonWriter& writer, double value) {
    writer.Double(value);
}

template <class Number>
void put(JsonWriter& writer, std::string_view key, Number value) {
    putText(writer, key);
    put(writer, value);
}

template <class Number>
void put(JsonWriter& writer, std::string_view key, std::optional<Number> value) {
    putText(writer, key);
    if (value) {
        put(writer, *value);
    } else {
        writer.Null();
    }
}

void putSection(JsonWriter& writer, std::string_view key, const SavedForm::Section& section) {
    putText(writer, key);
    writer.StartObject();
    put(writer, "bytes", section.byteSize);
    put(writer, "saved", section.savedSize);
    writer.EndObject();
}

void putSaved(JsonWriter& writer, const SetReport& report) {
    putText(writer, "saved");
    writer.StartObject();
    put(writer, "file", report.fileSize);
    put(writer, "form", report.form.savedSize);
    put(writer, "characters", report.characterBytes);
    putSection(writer, "shape", report.form.shape);
    putSection(writer, "structure", report.form.structure);
    putSection(writer, "names", report.form.keys);
    putSection(writer, "index", report.form.index);
    writer.EndObject();
}

void putTrie(JsonWriter& writer, const SetReport& report) {
    const TrieOutline& trie = report.form.trie;
    putText(writer, "tree");
    writer.StartObject();
    put(writer, "nodes", trie.nodeCount);
    put(writer, "folders", trie.folderCount);
    put(writer, "files", trie.fileCount);
    put(writer, "depth", trie.depth);
    put(writer, "widest", trie.widest);
    writer.EndObject();
}

void putFolders(JsonWriter& writer, const SetReport& report) {
    putText(writer, "largestFolders");
    writer.StartArray();
    for (const SavedForm::Folder& folder : report.form.largestFolders) {
        writer.StartObject();
        putName(writer, "folder", "bytes", folderText(folder.components));
        put(writer, "files", folder.fileCount);
        writer.EndObject();
    }
    writer.EndArray();
}

}  // namespace

std::string reportJson(const SetReport& report) {
    rapidjson::StringBuffer text;
    JsonWriter writer(text);
    writer.StartObject();
    putName(writer, "set", "setBytes", report.file);
    put(writer, "paths", report.pathCount);
    put(writer, "textBytes", report.textSize);
    put(writer, "characters", report.characterCount);
    put(writer, "charactersOfNames", report.codedCount);
    put(writer, "bitsACharacter", report.bitsACharacter);
    put(writer, "entries", report.form.entryCount);
    putTrie(writer, report);
    putSaved(writer, report);
    putFolders(writer, report);
    writer.EndObject();
    return {text.GetString(), text.GetSize()};
}

}  // namespace zqpaths
