#include "tools/zqpaths/output/Terminal.hpp"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <clocale>
#include <cstdlib>
#include <cstring>

namespace zqpaths::program {
namespace {

constexpr std::size_t kUsualWidth = 80;

bool isOutputHandedOn = false;

bool isUtf8Locale() {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr) return false;  // the environment names one that is not installed
    const bool isUtf8 = std::strcmp(nl_langinfo_l(CODESET, locale), "UTF-8") == 0;
    freelocale(locale);
    return isUtf8;
}

}  // namespace

bool isTerminal(int descriptor) {
    if (descriptor == STDOUT_FILENO && isOutputHandedOn) return false;
    return isatty(descriptor) != 0;
}

void takeOutputForHandedOn() {
    isOutputHandedOn = true;
}

bool hasColours(Colours wanted) {
    if (wanted != Colours::kAuto) return wanted == Colours::kAlways;
    return isTerminal(STDOUT_FILENO) && !environmentValue("NO_COLOR");
}

Charset charsetOfLocale() {
    static const Charset charset = isUtf8Locale() ? Charset::kUtf8 : Charset::kAscii;
    return charset;
}

Charset charsetOf(int descriptor) {
    return isTerminal(descriptor) ? charsetOfLocale() : Charset::kUtf8;
}

std::optional<std::string> environmentValue(const char* variable) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in the program changes the environment
    const char* const value = std::getenv(variable);
    if (value == nullptr || *value == '\0') return std::nullopt;
    return value;
}

std::size_t terminalWidth(int descriptor) {
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualWidth;
    return size.ws_col;
}

std::optional<std::size_t> outputWidth() {
    if (!isTerminal(STDOUT_FILENO)) return std::nullopt;
    return terminalWidth(STDOUT_FILENO);
}

}  // namespace zqpaths::program
