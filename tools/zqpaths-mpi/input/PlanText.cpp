#include "tools/zqpaths-mpi/input/PlanText.hpp"

#include <rapidjson/document.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/JsonText.hpp"
#include "zqpaths/directory/ScanOptions.hpp"

namespace zqpaths::program::mpi {
namespace {

constexpr std::uint64_t kVersion = 1;
constexpr std::array kKinds{"directory", "lines", "whole"};  // in the order of SourceKind

void put(JsonWriter& writer, const char* key, std::uint64_t number) {
    putText(writer, key);
    writer.Uint64(number);
}

/// What decides about which paths come of the sources, as the options are called.
ScanOptions decidingOptions(const SourceOptions& options) {
    ScanOptions deciding = scanOptionsOf(walkOptionsOf(options));
    if (options.format == SourceFormat::kList)
        deciding.emplace_back("list", "");
    else if (options.format)
        deciding.emplace_back("from", nameOfFormat(*options.format));
    if (options.nulDelimited) deciding.emplace_back("null", "");
    if (!options.field.empty()) deciding.emplace_back("field", options.field);
    return deciding;
}

void putOptions(JsonWriter& writer, const ScanOptions& options) {
    putText(writer, "options");
    writer.StartArray();
    for (const auto& [name, value] : options) {
        writer.StartObject();
        putName(writer, "name", "nameBytes", name);
        putName(writer, "value", "valueBytes", value);
        writer.EndObject();
    }
    writer.EndArray();
}

void putSources(JsonWriter& writer, const std::vector<InputSource>& sources) {
    putText(writer, "sources");
    writer.StartArray();
    for (const InputSource& source : sources) {
        writer.StartObject();
        putName(writer, "path", "pathBytes", source.name);
        putText(writer, "kind");
        putText(writer, kKinds.at(static_cast<std::size_t>(source.kind)));
        put(writer, "size", source.stamp.size);
        putText(writer, "changed");
        writer.Int64(source.stamp.changed);
        writer.EndObject();
    }
    writer.EndArray();
}

void putPart(JsonWriter& writer, const SourcePart& part, SourceKind kind) {
    writer.StartObject();
    put(writer, "source", part.source);
    if (kind == SourceKind::kLines) {
        put(writer, "begin", part.bytes.begin);
        put(writer, "end", part.bytes.end);
    } else if (kind == SourceKind::kDirectory) {
        putText(writer, "below");
        writer.StartArray();
        for (const std::string& name : part.directory.names) {
            writer.StartObject();
            putName(writer, "name", "nameBytes", name);
            writer.EndObject();
        }
        writer.EndArray();
        putText(writer, "all");
        writer.Bool(part.directory.isDeep);
    }
    writer.EndObject();
}

void putPieces(JsonWriter& writer, const InputPlan& plan) {
    putText(writer, "pieces");
    writer.StartArray();
    for (const InputPiece& piece : plan.pieces) {
        writer.StartArray();
        for (const SourcePart& part : piece.parts)
            putPart(writer, part, plan.sources[part.source].kind);
        writer.EndArray();
    }
    writer.EndArray();
}

rapidjson::Document parsed(std::string_view text) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
    return document;
}

/// A member; a plan of ours has them all, another null.
const rapidjson::Value& memberOf(const rapidjson::Value& object, const char* name) {
    static const rapidjson::Value none;
    if (!object.IsObject()) return none;
    const auto member = object.FindMember(name);
    return member == object.MemberEnd() ? none : member->value;
}

bool isPlan(const rapidjson::Document& plan) {
    if (plan.HasParseError() || !plan.IsObject()) return false;
    const rapidjson::Value& version = memberOf(plan, "plan");
    if (!version.IsUint64() || version.GetUint64() != kVersion) return false;
    return memberOf(plan, "generation").IsUint() && memberOf(plan, "replaces").IsBool() &&
           memberOf(plan, "pieces").IsArray();
}

std::string textOf(const rapidjson::Value& value) {
    return value.IsString() ? std::string(value.GetString(), value.GetStringLength())
                            : std::string();
}

/// "--hidden --exclude *.o", for people.
std::string optionsInWords(const rapidjson::Value& plan) {
    ScanOptions options;
    const rapidjson::Value& all = memberOf(plan, "options");
    if (all.IsArray())
        for (const rapidjson::Value& option : all.GetArray())
            options.emplace_back(textOf(memberOf(option, "name")),
                                 textOf(memberOf(option, "value")));
    return zqpaths::textOf(options);
}

/// The place of the first value of two arrays that is not the same; their size if there is none.
rapidjson::SizeType firstDifference(const rapidjson::Value& one, const rapidjson::Value& other) {
    rapidjson::SizeType i = 0;
    while (i < one.Size() && i < other.Size() && one[i] == other[i]) ++i;
    return i;
}

[[noreturn]] void refuse(std::string_view place, const std::string& reason) {
    throw failureAt(place, reason + "; --force begins anew");
}

}  // namespace

std::string encodePlan(const InputPlan& plan, const SourceOptions& options,
                       const PlanSummary& summary) {
    rapidjson::StringBuffer buffer;
    JsonWriter writer(buffer);
    writer.StartObject();
    put(writer, "plan", kVersion);
    put(writer, "generation", summary.generation);
    putText(writer, "replaces");
    writer.Bool(summary.mayReplace);
    const bool areFromHere = std::ranges::any_of(
        plan.sources, [](const InputSource& source) { return !source.name.starts_with('/'); });
    if (areFromHere)
        putName(writer, "folder", "folderBytes", std::filesystem::current_path().string());
    put(writer, "pieceSize", plan.pieceSize);
    putOptions(writer, decidingOptions(options));
    putSources(writer, plan.sources);
    putPieces(writer, plan);
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

std::optional<PlanSummary> summaryOfPlan(std::string_view text) {
    const rapidjson::Document plan = parsed(text);
    if (!isPlan(plan)) return std::nullopt;
    return PlanSummary{plan["generation"].GetUint(), plan["replaces"].GetBool(),
                       plan["pieces"].Size()};
}

void requireSamePlan(std::string_view begun, std::string_view present, std::string_view place) {
    const rapidjson::Document before = parsed(begun);
    const rapidjson::Document now = parsed(present);
    const auto isSame = [&](const char* name) {
        return memberOf(before, name) == memberOf(now, name);
    };
    if (!isSame("options"))
        refuse(place, "the run was begun with " + optionsInWords(before) + ", not with " +
                          optionsInWords(now));
    const rapidjson::Value& sources = memberOf(now, "sources");
    const rapidjson::Value& sourcesBefore = memberOf(before, "sources");
    if (!sourcesBefore.IsArray() || sourcesBefore.Size() != sources.Size())
        refuse(place, "the run was begun with other files or directories");
    if (!isSame("folder"))
        refuse(place, "the run was begun in " + textOf(memberOf(before, "folder")));
    const rapidjson::SizeType changed = firstDifference(sourcesBefore, sources);
    if (changed < sources.Size()) {
        const std::string name = textOf(memberOf(sources[changed], "path"));
        if (memberOf(sourcesBefore[changed], "path") != memberOf(sources[changed], "path"))
            refuse(name, "the run was begun with " +
                             textOf(memberOf(sourcesBefore[changed], "path")) + " in its place");
        refuse(name, "has changed since the run began");
    }
    if (!isSame("pieceSize")) refuse(place, "the run was begun with another --piece-size");
    const rapidjson::Value& pieces = memberOf(now, "pieces");
    const rapidjson::Value& piecesBefore = memberOf(before, "pieces");
    const rapidjson::SizeType piece = firstDifference(piecesBefore, pieces);
    if (piece == pieces.Size() && piece == piecesBefore.Size()) return;
    // One of the two has such a piece, whose first part tells where it is.
    const rapidjson::Value& differing = piece < pieces.Size() ? pieces[piece] : piecesBefore[piece];
    const rapidjson::Value& source = memberOf(differing[0], "source");
    const bool isKnown = source.IsUint() && source.GetUint() < sources.Size();
    refuse(isKnown ? textOf(memberOf(sources[source.GetUint()], "path")) : std::string(place),
           "has other directories than when the run began");
}

}  // namespace zqpaths::program::mpi
