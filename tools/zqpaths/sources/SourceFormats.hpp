#pragma once
// The formats that --from knows, and lists.

#include <memory>
#include <string>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sources/LineInput.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"

namespace zqpaths::program {

/// Whether files of a format are read line by line, so that a range of one can be read by itself.
bool isOfLines(SourceFormat format) noexcept;

/// A file, "-" for standard input, in the format that `options` tell, or a range of one that is of
/// lines. Throws Failure kFailed if it cannot be read or is not of the format.
std::unique_ptr<PathSource> openFormat(const std::string& file, const SourceOptions& options,
                                       ByteRange range = {});

}  // namespace zqpaths::program
