// Patterns of any kind are refused or match the same paths each time; a glob made of a path's own
// bytes, each after a backslash, matches the path.

#include <optional>
#include <string>

#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/Pattern.hpp"

using fuzzing::InputScript;
using fuzzing::require;
using fuzzing::succeeds;
using zqpaths::Pattern;

namespace {

enum class Kind { kGlob, kRegex, kText };

std::string textOf(const std::vector<std::uint8_t>& bytes) {
    return {bytes.begin(), bytes.end()};
}

Pattern patternOf(Kind kind, const std::string& text, Pattern::Case letterCase) {
    switch (kind) {
        case Kind::kGlob:
            return Pattern::glob(text, letterCase);
        case Kind::kRegex:
            return Pattern::regex(text, letterCase);
        default:
            return Pattern::text(text, letterCase);
    }
}

void requireOwnGlob(const std::string& path) {
    std::string glob = "**/";  // makes it one of whole paths
    for (const char character : path) glob.append({'\\', character});
    require(Pattern::glob(glob).matches(path), "a path matches itself");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    const auto kind = static_cast<Kind>(script.byte() % 3);
    const auto letterCase =
        script.byte() % 2 == 0 ? Pattern::Case::kRespect : Pattern::Case::kIgnore;
    const std::string text = textOf(script.bytes(script.byte()));
    const std::string path = textOf(script.rest());

    std::optional<Pattern> pattern;
    if (succeeds<zqpaths::Error>([&] { pattern.emplace(patternOf(kind, text, letterCase)); })) {
        const bool isMatch = pattern->matches(path);
        require(pattern->matches(path) == isMatch, "a match is one the second time, too");
        if (kind == Kind::kText && letterCase == Pattern::Case::kRespect)
            require(isMatch == (path.find(text) != std::string::npos), "a text occurs");
    }
    if (path.size() < 100) requireOwnGlob(path);
    return 0;
}
