#include "tools/zqpaths/arguments/Names.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace zqpaths::program {
namespace {

constexpr std::size_t kLettersForOneWrong = 3;
constexpr std::size_t kLongestGiven = 64;  // nobody means a name by more

/// A name that a shorter text begins: "comp" for "compact". One letter begins too many.
bool isBegunBy(std::string_view name, std::string_view given) {
    const std::size_t letters = given.size() - std::min(given.find_first_not_of('-'), given.size());
    return letters > 1 && name.starts_with(given);
}

}  // namespace

std::size_t lettersBetween(std::string_view first, std::string_view second) {
    // Rows of a table: what stands at [i][j] makes the first i letters the first j of the other.
    // Each follows from the one before, a swap of neighbours from the one before that.
    std::vector<std::size_t> beforeLast(second.size() + 1);
    std::vector<std::size_t> last(second.size() + 1);
    std::vector<std::size_t> row(second.size() + 1);
    for (std::size_t j = 0; j <= second.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= first.size(); ++i) {
        std::swap(beforeLast, last);
        std::swap(last, row);
        row[0] = i;
        for (std::size_t j = 1; j <= second.size(); ++j) {
            const std::size_t exchanged = last[j - 1] + (first[i - 1] == second[j - 1] ? 0 : 1);
            row[j] = std::min({exchanged, last[j] + 1, row[j - 1] + 1});
            const bool isSwap =
                i > 1 && j > 1 && first[i - 1] == second[j - 2] && first[i - 2] == second[j - 1];
            if (isSwap) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
    }
    return row.back();
}

std::optional<std::string> nearestName(std::string_view given,
                                       const std::vector<std::string>& names) {
    if (given.size() > kLongestGiven) return std::nullopt;
    for (const std::string& name : names)
        if (isBegunBy(name, given)) return name;
    std::optional<std::string> nearest;
    std::size_t fewest = given.size() / kLettersForOneWrong + 1;
    for (const std::string& name : names) {
        const std::size_t between = lettersBetween(given, name);
        if (between >= fewest) continue;
        fewest = between;
        nearest = name;
    }
    return nearest;
}

std::string nearestInWords(std::string_view given, const std::vector<std::string>& names,
                           std::string_view quote) {
    const std::optional<std::string> nearest = nearestName(given, names);
    if (!nearest) return "";
    return std::string("; the nearest is ").append(quote).append(*nearest).append(quote);
}

std::string inWords(const std::vector<std::string>& names, std::string_view lastJoin) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0 && i + 1 == names.size())
            text.append(" ").append(lastJoin).append(" ");
        else if (i > 0)
            text += ", ";
        text += names[i];
    }
    return text;
}

}  // namespace zqpaths::program
