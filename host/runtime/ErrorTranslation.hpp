#pragma once

#include "host/runtime/Error.hpp"

namespace korvex {

/// Within a handler: the exception that is being handled, as an Error.
Error handledError();

}  // namespace korvex
