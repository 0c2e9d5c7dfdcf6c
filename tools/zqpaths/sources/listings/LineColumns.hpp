#pragma once
// LineColumns takes the columns of a line one by one from its front:
//
//     LineColumns columns("2023-05-01 12:34:56       1234 a");
//     columns.takeShape("dddd-dd-dd dd:dd:dd ");  // true; 'd' is a digit, all else itself
//     columns.takeSize(10);                        // SizeColumn::kSome, right-aligned
//     columns.take(" ");                           // true
//     columns.rest();                              // "a"
//
// Threads: an object belongs to one thread at a time.

#include <cstddef>
#include <string_view>

namespace zqpaths::program {

enum class SizeColumn { kNone, kZero, kSome };

class LineColumns {
public:
    explicit LineColumns(std::string_view line) : rest_(line) {}

    std::string_view rest() const noexcept { return rest_; }

    bool take(std::string_view text);
    bool takeShape(std::string_view shape);
    void takeSpaces();

    /// A size that stands at the right end of a column of `width`, or goes beyond it: digits, or as
    /// people read it, like "1.2 KiB", "10 Bytes", "12M" and "1.205Ki". kNone, and an undefined
    /// rest, if there is none.
    SizeColumn takeSize(std::size_t width);

private:
    bool takeDigits(bool& isZero);
    bool takeUnit();

    std::string_view rest_;
};

}  // namespace zqpaths::program
