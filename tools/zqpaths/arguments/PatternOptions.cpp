#include "tools/zqpaths/arguments/PatternOptions.hpp"

namespace zqpaths::program {

std::vector<Option> patternOptions(PatternOptions& options) {
    return rows(argument("PATTERN", options.pattern, "what to look for"),
                flag("-r,--regex", options.isRegex, "PATTERN is a regular expression"),
                excluding("--regex", flag("-F,--fixed", options.isText,
                                          "PATTERN is a text that occurs in the path")),
                flag("-i,--ignore-case", options.ignoreCase, "without regard to case"));
}

Pattern patternOf(const PatternOptions& options) {
    const Pattern::Case letterCase =
        options.ignoreCase ? Pattern::Case::kIgnore : Pattern::Case::kRespect;
    if (options.isRegex) return Pattern::regex(options.pattern, letterCase);
    if (options.isText) return Pattern::text(options.pattern, letterCase);
    return Pattern::glob(options.pattern, letterCase);
}

}  // namespace zqpaths::program
