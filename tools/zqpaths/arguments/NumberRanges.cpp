#include "tools/zqpaths/arguments/NumberRanges.hpp"

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

constexpr char kColon = ':';

/// Far from where sums of numbers and steps would overflow.
constexpr std::int64_t kMaxNumber = std::int64_t{1} << 53;

std::uint64_t distance(std::uint64_t a, std::uint64_t b) noexcept {
    return a < b ? b - a : a - b;
}

[[noreturn]] void refuse(std::string_view text, const std::string& reason) {
    throw failureAt(text, reason);
}

/// A whole number that stands for `part` of `text`.
std::int64_t parseNumber(std::string_view part, std::string_view text) {
    std::int64_t number = 0;
    const char* const end = part.data() + part.size();
    const auto [parsed, error] = std::from_chars(part.data(), end, number);
    if (error == std::errc::result_out_of_range || number > kMaxNumber || number < -kMaxNumber)
        refuse(text, "no set has so many paths");
    if (error != std::errc() || parsed != end)
        refuse(text, "is neither a number nor numbers like 10:20 or 20:10:-1");
    return number;
}

/// The text up to the next colon, which is removed with it.
std::string_view takePart(std::string_view& text) {
    const std::size_t end = std::min(text.find(kColon), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

std::uint64_t parsePathNumber(std::string_view part, std::string_view text) {
    const std::int64_t number = parseNumber(part, text);
    if (number < 1) refuse(text, "the first path has number 1");
    return static_cast<std::uint64_t>(number);
}

}  // namespace

NumberRange::NumberRange(std::uint64_t first, std::uint64_t last, std::int64_t step) noexcept
    : first_(first),
      stepLength_(step < 0 ? -static_cast<std::uint64_t>(step) : static_cast<std::uint64_t>(step)),
      isDownwards_(step < 0),
      size_(distance(first, last) / stepLength_ + 1) {}

std::uint64_t NumberRange::operator[](std::uint64_t index) const noexcept {
    const std::uint64_t way = index * stepLength_;
    return isDownwards_ ? first_ - way : first_ + way;
}

void NumberRange::requireIn(std::uint64_t setSize) const {
    const std::uint64_t highest = std::max(first_, (*this)[size_ - 1]);
    requirePathNumber(highest, setSize);
}

void requirePathNumber(std::uint64_t number, std::uint64_t setSize) {
    if (number >= 1 && number <= setSize) return;
    throw Failure(ExitStatus::kFailed, "there is no path " + std::to_string(number) +
                                           " in this set of " + std::to_string(setSize) + " paths");
}

NumberRange parseNumberRange(std::string_view text) {
    const auto colons = std::ranges::count(text, kColon);
    std::string_view rest = text;
    const std::uint64_t first = parsePathNumber(takePart(rest), text);
    if (colons == 0) return {first, first, 1};

    const std::uint64_t last = parsePathNumber(takePart(rest), text);
    const std::int64_t step = colons == 1 ? 1 : parseNumber(rest, text);
    if (step == 0) refuse(text, "a step of 0 goes nowhere");
    if (step > 0 && first > last) refuse(text, "counts down, which takes a step like -1");
    if (step < 0 && first < last) refuse(text, "counts up, which takes a step like 1");
    return {first, last, step};
}

}  // namespace zqpaths::program
