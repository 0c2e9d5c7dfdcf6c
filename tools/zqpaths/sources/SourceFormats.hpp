#pragma once
// The formats that --from knows besides directories and lists.

#include <memory>
#include <string>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"

namespace zqpaths::program {

/// A file, "-" for standard input, in the format that `options` tell. Throws Failure kFailed if it
/// cannot be read or is not of the format.
std::unique_ptr<PathSource> openFormat(const std::string& file, const SourceOptions& options);

}  // namespace zqpaths::program
