#include "tools/zqpaths/report/ReportData.hpp"

#include <algorithm>
#include <array>
#include <filesystem>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tools/zqpaths/output/JsonText.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/sets/ExtensionCounts.hpp"
#include "zqpaths/totals/FolderTotals.hpp"

namespace zqpaths::program {
namespace {

using Place = FolderTotals::Place;

constexpr std::size_t kMostDepths = 30;  // bars of the chart, the last one for all that have more
constexpr std::size_t kMostExtensions = 20;

void put(JsonWriter& writer, std::string_view key, std::uint64_t number) {
    putText(writer, key);
    writer.Uint64(number);
}

/// An array of what `valueOf` says of each folder.
template <class ValueOf>
void putEach(JsonWriter& writer, std::string_view key, const std::vector<Place>& places,
             ValueOf valueOf) {
    putText(writer, key);
    writer.StartArray();
    for (const Place place : places) writer.Uint64(valueOf(place));
    writer.EndArray();
}

void putFigures(JsonWriter& writer, const PathSet& set) {
    std::uint64_t textSize = 0;
    for (const PathSet::Segment& segment : set.segments()) textSize += segment.textSize;
    const std::filesystem::path file(set.file());
    putText(writer, "set");
    putText(writer, printableText(file.filename().string()));
    put(writer, "textBytes", textSize);
    put(writer, "fileBytes", std::filesystem::file_size(file));
}

/// Folders by their places in arrays of equal length, largest first, the top at 0: a parent comes
/// before what is in it.
void putFolders(JsonWriter& writer, const FolderTotals& totals, std::size_t limit) {
    const std::vector<Place> largest = totals.largest(limit + 1);  // with the top
    const std::vector<Place> places = largest.empty() ? std::vector{FolderTotals::kTop} : largest;
    std::unordered_map<Place, std::uint64_t> positions;
    for (const Place place : places) positions.emplace(place, positions.size());

    putText(writer, "names");
    writer.StartArray();
    for (const Place place : places) putText(writer, printableText(totals.nameOf(place)));
    writer.EndArray();
    putEach(writer, "parents", places,
            [&](Place place) { return positions.at(totals.parentOf(place)); });
    putEach(writer, "files", places, [&](Place place) { return totals.of(place).filesBelow; });
    putEach(writer, "filesIn", places, [&](Place place) { return totals.of(place).filesIn; });
    putEach(writer, "foldersBelow", places,
            [&](Place place) { return totals.of(place).foldersBelow; });
}

/// How many paths have one name, two, and so on; the last number counts those with more, too.
void putDepths(JsonWriter& writer, const FolderTotals& totals) {
    std::vector<std::uint64_t> counts = totals.filesByDepth();
    put(writer, "mostNames", counts.size());
    for (std::size_t depth = kMostDepths; depth < counts.size(); ++depth)
        counts[kMostDepths - 1] += counts[depth];
    counts.resize(std::min(counts.size(), kMostDepths));
    putText(writer, "depths");
    writer.StartArray();
    for (const std::uint64_t count : counts) writer.Uint64(count);
    writer.EndArray();
}

void putExtensions(JsonWriter& writer, const ExtensionCounts& counts) {
    putText(writer, "extensions");
    writer.StartArray();
    for (const auto& [name, count] : counts.most) {
        writer.StartArray();
        putText(writer, printableText(name));
        writer.Uint64(count);
        writer.EndArray();
    }
    writer.EndArray();
    put(writer, "otherExtensions", counts.others);
    put(writer, "noExtension", counts.none);
}

}  // namespace

std::string reportData(const PathSet& set, std::size_t folderLimit,
                       const std::function<void()>& step) {
    const FolderTotals totals(set);
    rapidjson::StringBuffer text;
    JsonWriter writer(text);
    writer.StartObject();
    put(writer, "paths", totals.of(FolderTotals::kTop).filesBelow);
    putFigures(writer, set);
    putFolders(writer, totals, folderLimit);
    putDepths(writer, totals);
    putExtensions(writer, countExtensions(set, kMostExtensions, step));
    writer.EndObject();
    return withoutMarkup({text.GetString(), text.GetSize()});
}

std::string withoutMarkup(std::string_view json) {
    // All of them can stand in strings only, where JSON takes the escape for the character.
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 5> kEscapes{
        {{"<", "\\u003C"},
         {">", "\\u003E"},
         {"&", "\\u0026"},
         {"\xE2\x80\xA8", "\\u2028"},
         {"\xE2\x80\xA9", "\\u2029"}}};
    std::string text;
    text.reserve(json.size());
    while (!json.empty()) {
        const auto* const escape = std::ranges::find_if(
            kEscapes, [json](const auto& each) { return json.starts_with(each.first); });
        if (escape == kEscapes.end()) {
            text.push_back(json.front());
            json.remove_prefix(1);
        } else {
            text.append(escape->second);
            json.remove_prefix(escape->first.size());
        }
    }
    return text;
}

}  // namespace zqpaths::program
