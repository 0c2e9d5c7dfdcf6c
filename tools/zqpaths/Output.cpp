#include "tools/zqpaths/Output.hpp"
#include <cstdio>
namespace zqpaths {
Output::Output(const OutputOptions& o) : options_(o) {}
void Output::path(std::uint64_t, std::string_view p) { path(p); }
void Output::numberedPath(std::uint64_t n, std::string_view p) { buffer_ += std::to_string(n) + "\t"; path(p); }
void Output::path(std::string_view p) { buffer_ += p; buffer_ += options_.nulTerminated ? '\0' : '\n'; if (buffer_.size() > 1 << 20) finish(); }
void Output::line(std::string_view t) { path(t); }
void Output::count(std::uint64_t c) { path(std::to_string(c)); }
void Output::number(std::uint64_t n, std::string_view) { path(std::to_string(n)); }
void Output::finish() { std::fwrite(buffer_.data(), 1, buffer_.size(), stdout); std::fflush(stdout); buffer_.clear(); }
}
