#include "tools/zqpaths/Progress.hpp"
namespace zqpaths {
Progress::Progress(std::string w, const MessageOptions&, std::optional<std::uint64_t> t) : work_(std::move(w)), total_(t), isShown_(false) {}
Progress::~Progress() = default;
void Progress::look() { nextLook_ = UINT64_MAX; }
}
