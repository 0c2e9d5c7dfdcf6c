#include "tools/zqpaths/progress/ProgressText.hpp"

#include <cmath>
#include <string_view>

#include "tools/zqpaths/output/Figures.hpp"
#include "tools/zqpaths/output/JsonText.hpp"

namespace zqpaths::program {
namespace {

constexpr double kBytesAMegabyte = 1e6;
constexpr double kHundred = 100;
constexpr int kJsonPlaces = 3;

/// "1,234 paths" or "12 MB"; with a total "1,234 of 5,678 paths".
std::string countText(const ProgressState& state) {
    const auto number = [&state](std::uint64_t items) {
        if (state.unit == WorkUnit::kPaths) return groupDigits(items);
        return fixedPoint(static_cast<double>(items) / kBytesAMegabyte, 0);
    };
    std::string text = number(state.done);
    if (state.total) text += " of " + number(*state.total);
    return text + (state.unit == WorkUnit::kPaths ? " paths" : " MB");
}

std::string rateText(const ProgressState& state) {
    const double rate = static_cast<double>(state.done) / state.phaseSeconds;
    if (state.unit == WorkUnit::kPaths) return fixedPoint(rate, 0) + "/s";
    return fixedPoint(rate / kBytesAMegabyte, 0) + " MB/s";
}

void putOptional(JsonWriter& writer, std::string_view key, const std::optional<double>& value) {
    putText(writer, key);
    if (value)
        writer.Double(*value);
    else
        writer.Null();
}

}  // namespace

std::optional<double> ProgressState::secondsLeft() const {
    if (!part || *part <= 0) return std::nullopt;
    return seconds * (1 - *part) / *part;
}

std::string progressLine(const ProgressState& state) {
    std::string line = state.work + ":";
    if (!state.phase.empty()) line += ' ' + state.phase + ',';
    if (state.done == 0 && !state.total) {
        line += ' ' + durationText(state.phaseSeconds);  // nothing is counted
    } else {
        line += ' ' + countText(state);
        if (state.done > 0 && state.phaseSeconds > 0) line += ", " + rateText(state);
    }
    if (state.part) line += ", " + fixedPoint(std::floor(kHundred * *state.part), 0) + '%';
    if (const auto left = state.secondsLeft()) line += ", " + durationText(*left) + " left";
    return line;
}

std::string progressJson(const ProgressState& state) {
    rapidjson::StringBuffer text;
    JsonWriter writer(text);
    writer.SetMaxDecimalPlaces(kJsonPlaces);
    writer.StartObject();
    putText(writer, "work");
    putText(writer, state.work);
    putText(writer, "phase");
    if (state.phase.empty())
        writer.Null();
    else
        putText(writer, state.phase);
    putText(writer, "unit");
    putText(writer, state.unit == WorkUnit::kPaths ? "paths" : "bytes");
    putText(writer, "done");
    writer.Uint64(state.done);
    putText(writer, "total");
    if (state.total)
        writer.Uint64(*state.total);
    else
        writer.Null();
    putOptional(writer, "part", state.part);
    putText(writer, "seconds");
    writer.Double(state.seconds);
    putOptional(writer, "secondsLeft", state.secondsLeft());
    writer.EndObject();
    return text.GetString();
}

}  // namespace zqpaths::program
