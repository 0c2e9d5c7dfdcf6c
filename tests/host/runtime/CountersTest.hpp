#pragma once
// CountersTest is a balanced test with the library of counters loaded, as a host program has it.

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "host/foundation/Exceptions.hpp"
#include "host/kobj/ObjectErrors.hpp"
#include "host/runtime/Session.hpp"
#include "tests/host/BalancedTest.hpp"

namespace korvex {

/// An Error in values that can be compared.
struct Failure {
    std::string identifier;
    std::string text;

    bool operator==(const Failure&) const = default;
};

inline void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.identifier << ": " << failure.text;
}

/// What a program gets of the host's own error `MessageId` with these arguments.
template <class MessageId, class... Arguments>
Failure refusalOf(const Arguments&... arguments) {
    const foundation::core::except::Exception<MessageId> error(arguments...);
    return {error.identifier(), error.text()};
}

/// The Error that `step` throws.
template <class Step>
Failure failureOf(Step step) {
    try {
        step();
    } catch (const Error& error) {
        return {error.identifier(), error.what()};
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

inline Array number(double value) {
    return numbers(std::vector<double>{value});
}

inline double numberIn(const Array& array) {
    return kxGetNumber(array.get(), 0);
}

template <class... Arrays>
Array cellOf(Arrays... elements) {
    std::vector<Array> all;
    (all.push_back(std::move(elements)), ...);
    return cell(std::move(all));
}

class CountersTest : public BalancedTest {
protected:
    void SetUp() override {
        session_.loadLibrary(ZQ_COUNTERS_LIBRARY);
        BalancedTest::SetUp();
    }

    template <class... Arrays>
    Object makeCounter(const Arrays&... inputs) {
        return session_.construct("korvex.tests.Counter", inputs...);
    }

    Session session_;
};

}  // namespace korvex
