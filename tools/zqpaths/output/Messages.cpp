#include "tools/zqpaths/output/Messages.hpp"

#include <cstdio>
#include <utility>

#include "tools/zqpaths/progress/Progress.hpp"

namespace zqpaths::program {
namespace {

std::string& currentTeller() {
    static std::string name = "zqpaths";
    return name;
}

}  // namespace

const std::string& teller() {
    return currentTeller();
}

void nameTeller(std::string name) {
    currentTeller() = std::move(name);
}

void tell(std::string_view message) noexcept {
    const Progress::Room room;
    // There is nobody left to tell that this failed.
    static_cast<void>(std::fprintf(stderr, "%s: %.*s\n", teller().c_str(),
                                   static_cast<int>(message.size()), message.data()));
}

}  // namespace zqpaths::program
