#include "tools/zqpaths/arguments/NumberInput.hpp"

#include <unistd.h>

#include <algorithm>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/Transfers.hpp"

namespace zqpaths::program {
namespace {

constexpr const char* kPlace = "standard input";
constexpr std::string_view kGaps{" \t\n\v\f\r\0", 7};
constexpr std::size_t kMaxWordBytes = 256;  // no range is so long; what is, is not read to its end

}  // namespace

bool NumberInput::read(const std::function<void(const NumberRange&)>& visit) {
    const std::size_t count = readSome(STDIN_FILENO, buffer_.data(), buffer_.size(), kPlace);
    if (count == 0) {
        finishWord(visit);
        return false;
    }
    take({buffer_.data(), count}, visit);
    return true;
}

void NumberInput::take(std::string_view text,
                       const std::function<void(const NumberRange&)>& visit) {
    while (!text.empty()) {
        const std::size_t wordLength = std::min(text.find_first_of(kGaps), text.size());
        word_ += text.substr(0, wordLength);
        if (wordLength < text.size() || word_.size() > kMaxWordBytes) finishWord(visit);
        text.remove_prefix(wordLength);
        if (text.empty()) return;
        if (text.front() == '\n') ++line_;
        text.remove_prefix(1);
    }
}

void NumberInput::finishWord(const std::function<void(const NumberRange&)>& visit) {
    if (word_.empty()) return;
    const NumberRange range = parseWord();
    word_.clear();
    visit(range);
}

NumberRange NumberInput::parseWord() const {
    try {
        return parseNumberRange(word_, setSize_);
    } catch (const Failure& failure) {
        throw failureAt(kPlace, "line " + std::to_string(line_) + ": " + failure.what(),
                        failure.status());
    }
}

}  // namespace zqpaths::program
