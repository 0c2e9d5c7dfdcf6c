#include "tools/zqpaths/sources/listings/LineColumns.hpp"

#include <algorithm>

namespace zqpaths::program {
namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

}  // namespace

bool LineColumns::take(std::string_view text) {
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
}

bool LineColumns::takeShape(std::string_view shape) {
    if (rest_.size() < shape.size()) return false;
    const bool fits =
        std::equal(shape.begin(), shape.end(), rest_.begin(),
                   [](char wanted, char is) { return wanted == 'd' ? isDigit(is) : wanted == is; });
    if (fits) rest_.remove_prefix(shape.size());
    return fits;
}

void LineColumns::takeSpaces() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(' '), rest_.size()));
}

SizeColumn LineColumns::takeSize(std::size_t width) {
    const std::string_view line = rest_;
    takeSpaces();
    bool isZero = true;
    take("-");  // an unknown size is told as -1
    if (!takeDigits(isZero)) return SizeColumn::kNone;
    if (take(".") && !takeDigits(isZero)) return SizeColumn::kNone;
    // What ends within the column is followed by a unit; past its end comes what is next. So
    // "10 Bytes" is a size in one, and "        10 Bytes" is 10 and a name.
    const auto isWithin = [&] { return line.size() - rest_.size() < width; };
    takeUnit();
    if (isWithin() && !(take(" ") && takeUnit())) return SizeColumn::kNone;
    if (isWithin()) return SizeColumn::kNone;
    return isZero ? SizeColumn::kZero : SizeColumn::kSome;
}

bool LineColumns::takeDigits(bool& isZero) {
    const auto count =
        static_cast<std::size_t>(std::ranges::find_if_not(rest_, isDigit) - rest_.begin());
    isZero = isZero && rest_.find_first_not_of('0') >= count;
    rest_.remove_prefix(count);
    return count > 0;
}

bool LineColumns::takeUnit() {
    for (const char* unit : {"Bytes", "Byte", "B"})
        if (take(unit)) return true;
    const bool isScaled =
        !rest_.empty() && std::string_view("kKMGTPE").find(rest_.front()) != std::string_view::npos;
    if (!isScaled) return false;
    rest_.remove_prefix(1);
    take("i");
    take("B");
    return true;
}

}  // namespace zqpaths::program
