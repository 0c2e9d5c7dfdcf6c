#pragma once
// What the host says when it refuses something:
//
//     EXPECT_EQ(refusal<KORVEX::arrays::noSuchField>([&] { kxGetField(person, 0, "age"); }),
//               (Arguments{"age"}));

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/foundation/Exceptions.hpp"

using Arguments = std::vector<std::string>;

/// The arguments of the error `MessageId` that `act` throws; any other error passes on, and none
/// fails the test.
template <class MessageId, class Act>
Arguments refusal(Act act) {
    try {
        act();
    } catch (const foundation::core::except::Exception<MessageId>& error) {
        return error.arguments();
    }
    ADD_FAILURE() << "expected " << MessageId::kComponent << ":" << MessageId::kKey;
    return {};
}
