#pragma once
// A user without the rights of root, while it lives: what nobody may read cannot be read then.
//
//     const OrdinaryUser user;
//     if (::geteuid() == 0) GTEST_SKIP() << "root reads every directory, and cannot step down
//     here";
//
// Threads: for all of the process; one at a time.

#include <unistd.h>

namespace test_support {

class OrdinaryUser {
public:
    OrdinaryUser() {
        if (::geteuid() == 0) isSwitched_ = ::seteuid(kNobody) == 0;
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;
    ~OrdinaryUser() {
        if (isSwitched_) static_cast<void>(::seteuid(0));
    }

private:
    static constexpr uid_t kNobody = 65534;
    bool isSwitched_ = false;
};

}  // namespace test_support
