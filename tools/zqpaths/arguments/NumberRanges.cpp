#include "tools/zqpaths/arguments/NumberRanges.hpp"

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths::program {
namespace {

constexpr char kColon = ':';
constexpr const char* kIsNoRange = "is neither a number nor numbers like 10:20, -5: or 20:10:-1";

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
    if (error != std::errc() || parsed != end) refuse(text, kIsNoRange);
    return number;
}

/// The text up to the next colon, which is removed with it.
std::string_view takePart(std::string_view& text) {
    const std::size_t end = std::min(text.find(kColon), text.size());
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

[[noreturn]] void refuseNumber(std::int64_t number, std::uint64_t setSize) {
    throw Failure(ExitStatus::kFailed, "there is no path " + std::to_string(number) +
                                           " in this set of " + std::to_string(setSize) + " paths");
}

/// The number of a path; -1 is that of the last one.
std::uint64_t parsePathNumber(std::string_view part, std::string_view text, std::uint64_t setSize) {
    const std::int64_t number = parseNumber(part, text);
    if (number == 0) refuse(text, "the first path has number 1");
    if (number > 0) return static_cast<std::uint64_t>(number);
    const std::uint64_t fromEnd = -static_cast<std::uint64_t>(number);
    if (fromEnd > setSize) refuseNumber(number, setSize);
    return setSize + 1 - fromEnd;
}

/// Both ends and a step, of which `text` is the whole; parts that are left out are empty.
struct RangeText {
    std::string_view first;
    std::string_view last;
    std::string_view step;
    std::string_view text;
};

NumberRange parseRange(const RangeText& range, std::uint64_t setSize) {
    const std::string_view text = range.text;
    const std::int64_t step = range.step.empty() ? 1 : parseNumber(range.step, text);
    if (step == 0) refuse(text, "a step of 0 goes nowhere");
    if (setSize == 0 && range.first.empty() && range.last.empty()) return {};

    const bool isDownwards = step < 0;
    const auto end = [&](std::string_view part, bool isLowest) {
        if (part.empty()) return isLowest ? 1 : setSize;
        return parsePathNumber(part, text, setSize);
    };
    const std::uint64_t from = end(range.first, !isDownwards);
    const std::uint64_t to = end(range.last, isDownwards);
    // An end that is left out lies beyond one that the set has not.
    if (from > setSize && range.last.empty())
        refuseNumber(static_cast<std::int64_t>(from), setSize);
    if (!isDownwards && from > to) refuse(text, "counts down, which takes a step like -1");
    if (isDownwards && from < to) {
        if (range.first.empty()) refuseNumber(static_cast<std::int64_t>(to), setSize);
        refuse(text, "counts up, which takes a step like 1");
    }
    return {from, to, step};
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

NumberRange parseNumberRange(std::string_view text, std::uint64_t setSize) {
    const auto colons = std::ranges::count(text, kColon);
    std::string_view rest = text;
    const std::string_view first = takePart(rest);
    NumberRange range;
    if (colons == 0) {
        const std::uint64_t number = parsePathNumber(first, text, setSize);
        range = {number, number, 1};
    } else {
        const std::string_view last = takePart(rest);
        if (colons > 1 && rest.empty()) refuse(text, kIsNoRange);
        range = parseRange({first, last, rest, text}, setSize);
    }
    if (range.size() == 0) return range;
    const std::uint64_t highest = std::max(range[0], range[range.size() - 1]);
    if (highest > setSize) refuseNumber(static_cast<std::int64_t>(highest), setSize);
    return range;
}

}  // namespace zqpaths::program
