#include "tools/zqpaths/Messages.hpp"

#include <cstdio>

#include "tools/zqpaths/Progress.hpp"

namespace zqpaths {

void tell(std::string_view message) noexcept {
    Progress::makeRoom();
    // There is nobody left to tell that this failed.
    static_cast<void>(
        std::fprintf(stderr, "zqpaths: %.*s\n", static_cast<int>(message.size()), message.data()));
}

}  // namespace zqpaths
