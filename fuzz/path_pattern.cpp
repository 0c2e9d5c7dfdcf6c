// Patterns of any kind are refused or match the same paths each time; a glob made of a path's own
// bytes, each behind a backslash, matches the path.

#include <optional>
#include <string>

#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/PathPattern.hpp"

using namespace zqpaths;
using fuzzing::InputScript;
using fuzzing::require;
using fuzzing::succeeds;

namespace {

std::string textOf(const std::vector<std::uint8_t>& bytes) {
    return {bytes.begin(), bytes.end()};
}

void requireOwnGlob(const std::string& path) {
    std::string glob = "**/";  // makes it one of whole paths
    for (const char character : path) glob.append({'\\', character});
    const PathPattern pattern(PatternKind::kGlob, glob, PathPattern::Case::kRespect);
    require(pattern.matches(path), "a path matches itself");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    const auto kind = static_cast<PatternKind>(script.byte() % 3);
    const auto letterCase =
        script.byte() % 2 == 0 ? PathPattern::Case::kRespect : PathPattern::Case::kIgnore;
    const std::string text = textOf(script.bytes(script.byte()));
    const std::string path = textOf(script.rest());

    std::optional<PathPattern> pattern;
    if (succeeds<Failure>([&] { pattern.emplace(kind, text, letterCase); })) {
        const bool isMatch = pattern->matches(path);
        require(pattern->matches(path) == isMatch, "a match is one the second time, too");
        if (kind == PatternKind::kFixed && letterCase == PathPattern::Case::kRespect)
            require(isMatch == (path.find(text) != std::string::npos), "a fixed text occurs");
    }
    if (path.size() < 100) requireOwnGlob(path);
    return 0;
}
