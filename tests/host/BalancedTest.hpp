#pragma once
// BalancedTest is a test that has to free as many objects of the host as it makes.

#include <gtest/gtest.h>

#include <ostream>

#include "host/foundation/LiveObjects.hpp"

namespace foundation::core {

inline void PrintTo(const LiveObjects& objects, std::ostream* out) {
    *out << objects.arrays << " arrays, " << objects.interfaces << " interfaces, "
         << objects.instances << " instances, " << objects.classInfos << " class infos, "
         << objects.methodInfos << " method infos, " << objects.methodSignatures
         << " method signatures";
}

}  // namespace foundation::core

class BalancedTest : public testing::Test {
protected:
    void SetUp() override { before_ = foundation::core::liveObjects(); }
    void TearDown() override { EXPECT_EQ(foundation::core::liveObjects(), before_); }

private:
    foundation::core::LiveObjects before_;
};
