#include "examples/PrintableNumbers.hpp"

#include <array>
#include <cstdio>

namespace examples {
std::string grouped(std::size_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3;) digits.insert(i -= 3, 1, ',');
    return digits;
}

std::string withDecimals(double number, int decimals) {
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.*f", decimals, number));
    return text.data();
}

}  // namespace examples
