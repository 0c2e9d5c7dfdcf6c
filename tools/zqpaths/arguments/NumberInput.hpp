#pragma once
// NumberInput reads numbers of paths, and ranges of them, from standard input: as many as come at
// a time, separated by white space or NUL.
//
//     NumberInput input(set.size());
//     while (input.read([](const NumberRange& range) { ... })) {
//         ...  // more may take its time
//     }

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "tools/zqpaths/arguments/NumberRanges.hpp"

namespace zqpaths::program {

class NumberInput {
public:
    /// `setSize`: the highest number there may be.
    explicit NumberInput(std::uint64_t setSize) : setSize_(setSize) {}

    /// Waits for what comes next and calls `visit` for the ranges in it; false at the end. Throws
    /// Failure kFailed, which tells the line, for what is no range or goes beyond the set, and if
    /// standard input cannot be read.
    bool read(const std::function<void(const NumberRange&)>& visit);

private:
    void take(std::string_view text, const std::function<void(const NumberRange&)>& visit);
    void finishWord(const std::function<void(const NumberRange&)>& visit);
    NumberRange parseWord() const;

    std::uint64_t setSize_;
    std::array<char, std::size_t{1} << 16> buffer_{};
    std::string word_;  // what of a number has been read
    std::uint64_t line_ = 1;
};

}  // namespace zqpaths::program
