#include "tools/zqpaths/output/Figures.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace zqpaths::program {
namespace {

constexpr std::size_t kGroup = 3;
constexpr std::uint64_t kSecondsAMinute = 60;
constexpr std::uint64_t kSecondsAnHour = 3'600;
constexpr std::array<const char*, 7> kBinaryUnits{"B", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
constexpr std::array<const char*, 7> kDecimalUnits{"B", "kB", "MB", "GB", "TB", "PB", "EB"};
constexpr double kLongestSeconds = 1e9;  // some thirty years: no more is foretold

void insertGroups(std::string& text, std::size_t digitCount) {
    for (std::size_t left = digitCount; left > kGroup;) {
        left -= kGroup;
        text.insert(left, 1, ',');
    }
}

}  // namespace

std::string groupDigits(std::uint64_t number) {
    std::string text = std::to_string(number);
    insertGroups(text, text.size());
    return text;
}

std::string fixedPoint(double number, int digits) {
    std::array<char, 400> buffer{};  // the largest double has 309 digits before the point
    const int length =
        std::snprintf(buffer.data(), buffer.size(), "%.*f", digits, std::max(number, 0.0));
    std::string text(buffer.data(), static_cast<std::size_t>(length));
    insertGroups(text, std::min(text.find('.'), text.size()));
    return text;
}

std::string sizeText(std::uint64_t bytes, SizeUnits units) {
    if (units == SizeUnits::kBytes) return groupDigits(bytes) + (bytes == 1 ? " byte" : " bytes");
    const bool isBinary = units == SizeUnits::kBinary;
    const double step = isBinary ? 1024 : 1000;
    const std::array<const char*, 7>& names = isBinary ? kBinaryUnits : kDecimalUnits;
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    // What a tenth would round up to a whole step is one of the next unit.
    for (; unit + 1 < names.size() && std::round(size * 10) >= step * 10; ++unit) size /= step;
    return fixedPoint(size, unit == 0 ? 0 : 1) + " " + names[unit];
}

std::string durationText(double seconds) {
    const auto whole =
        static_cast<std::uint64_t>(std::llround(std::clamp(seconds, 0.0, kLongestSeconds)));
    if (whole < kSecondsAMinute) return std::to_string(whole) + " s";
    if (whole < kSecondsAnHour)
        return std::to_string(whole / kSecondsAMinute) + " min " +
               std::to_string(whole % kSecondsAMinute) + " s";
    return std::to_string(whole / kSecondsAnHour) + " h " +
           std::to_string(whole % kSecondsAnHour / kSecondsAMinute) + " min";
}

}  // namespace zqpaths::program
