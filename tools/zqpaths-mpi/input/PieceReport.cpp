#include "tools/zqpaths-mpi/input/PieceReport.hpp"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <array>

namespace zqpaths::program::mpi {
namespace {

struct NamedCount {
    const char* name;
    std::uint64_t LeftOutNames::*count;
};

constexpr std::array kLeftOut{NamedCount{"hidden", &LeftOutNames::hidden},
                              NamedCount{"excluded", &LeftOutNames::excluded},
                              NamedCount{"ofOtherTypes", &LeftOutNames::ofOtherTypes},
                              NamedCount{"tooDeep", &LeftOutNames::tooDeep},
                              NamedCount{"onOtherFileSystems", &LeftOutNames::onOtherFileSystems}};

/// False if there is no such number.
bool take(const rapidjson::Value& object, const char* name, std::uint64_t& number) {
    const auto member = object.FindMember(name);
    if (member == object.MemberEnd() || !member->value.IsUint64()) return false;
    number = member->value.GetUint64();
    return true;
}

}  // namespace

std::string encodeReport(const PieceReport& report) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    const auto put = [&writer](const char* name, std::uint64_t number) {
        writer.Key(name);
        writer.Uint64(number);
    };
    writer.StartObject();
    put("paths", report.pathCount);
    writer.Key("leftOut");
    writer.StartObject();
    for (const NamedCount& named : kLeftOut) put(named.name, report.source.leftOut.*named.count);
    writer.EndObject();
    put("unreadable", report.source.unreadableCount);
    writer.Key("firstUnreadable");
    const std::string& first = report.source.firstUnreadable;
    writer.String(first.data(), static_cast<rapidjson::SizeType>(first.size()));
    writer.EndObject();
    return {buffer.GetString(), buffer.GetSize()};
}

std::optional<PieceReport> decodeReport(std::string_view text) {
    rapidjson::Document parsed;
    parsed.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
    if (parsed.HasParseError() || !parsed.IsObject()) return std::nullopt;
    const rapidjson::Value& document = parsed;
    const auto leftOut = document.FindMember("leftOut");
    const auto first = document.FindMember("firstUnreadable");
    PieceReport report;
    bool isWhole = leftOut != document.MemberEnd() && leftOut->value.IsObject() &&
                   first != document.MemberEnd() && first->value.IsString() &&
                   take(document, "paths", report.pathCount) &&
                   take(document, "unreadable", report.source.unreadableCount);
    if (!isWhole) return std::nullopt;
    for (const NamedCount& named : kLeftOut)
        isWhole = isWhole && take(leftOut->value, named.name, report.source.leftOut.*named.count);
    report.source.firstUnreadable.assign(first->value.GetString(), first->value.GetStringLength());
    return isWhole ? std::optional(report) : std::nullopt;
}

}  // namespace zqpaths::program::mpi
