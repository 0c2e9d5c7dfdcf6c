// Paths are any bytes: as UTF-16 and back, and cut and joined, they are the same.

#include <string>

#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
#include "tools/zqpaths/output/TerminalCharacters.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

using namespace zqpaths;
using fuzzing::require;
using namespace zqpaths::program;

namespace {

void requireSameText(const std::string& bytes) {
    std::u16string text;
    appendUtf16(bytes, text);
    std::string back;
    appendBytes(text, back);
    require(back == bytes, "bytes come back from UTF-16");

    std::string readable;
    appendReadable(bytes, readable);
    require(isUtf8(readable), "what is readable is UTF-8");
    require((readable == bytes) == isUtf8(bytes), "UTF-8 is readable as it is");
}

void requireSamePath(const std::string& path) {
    const CutPath cut = cutPath(path);
    require(!cut.folder.empty() && !cut.fileName.empty(), "a path has a folder and a name");
    for (const std::string_view component : cut.folder)
        require(!component.empty(), "no component is empty");
    require(joinPath(cut.folder, cut.fileName) == path, "a path that was cut is joined again");
}

void requirePrintable(const std::string& path) {
    const std::string printed = printableText(path);
    require(isUtf8(printed), "what is printed is UTF-8");
    std::u16string text;
    appendUtf16(printed, text);
    for (std::u16string_view rest = text; !rest.empty();)
        require(isShown(codeOf(takeCharacter(rest))), "a terminal shows all that is printed");
    std::string ascii;
    appendPrintable(path, Charset::kAscii, ascii);
    require(shownAsciiPrefix(ascii) == ascii.size(), "a terminal of ASCII gets ASCII");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(data, data + size);
    requireSameText(bytes);
    requirePrintable(bytes);
    if (!bytes.empty() && bytes.find('\0') == std::string::npos) requireSamePath(bytes);
    return 0;
}
