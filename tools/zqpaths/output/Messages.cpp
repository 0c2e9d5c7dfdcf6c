#include "tools/zqpaths/output/Messages.hpp"

#include <cstdio>

#include "tools/zqpaths/progress/Progress.hpp"

namespace zqpaths::program {

void tell(std::string_view message) noexcept {
    const Progress::Room room;
    // There is nobody left to tell that this failed.
    static_cast<void>(
        std::fprintf(stderr, "zqpaths: %.*s\n", static_cast<int>(message.size()), message.data()));
}

}  // namespace zqpaths::program
