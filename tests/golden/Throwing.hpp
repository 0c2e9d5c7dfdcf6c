#pragma once
// What a call throws, as a record writes it: the name of the class and its text.
//
//     EXPECT_EQ(thrownBy([&] { set.generateCodeFor(u""); }), recordedThrow(step));

#include <exception>
#include <iosfwd>
#include <optional>
#include <string>

#include "tests/golden/RecordFields.hpp"

namespace compressedpaths::golden {

struct Thrown {
    std::string type;  // without its namespaces
    std::string what;

    bool operator==(const Thrown&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Thrown& thrown);

Thrown describe(const std::exception& exception);

template <class Call>
std::optional<Thrown> thrownBy(Call call) {
    try {
        call();
    } catch (const std::exception& exception) {
        return describe(exception);
    }
    return std::nullopt;
}

/// The field "throws" of a record or a step; nothing if it has none.
std::optional<Thrown> recordedThrow(Fields& fields);

}  // namespace compressedpaths::golden
