#include "host/runtime/Error.hpp"

#include <utility>

namespace korvex {

Error::Error(std::string identifier, const std::string& text)
    : std::runtime_error(text), identifier_(std::move(identifier)) {}

Error::~Error() = default;

}  // namespace korvex
