#pragma once
// The manual page and the shells' completions, made from the program's table.

#include <string>
#include <vector>

#include "tools/zqpaths/ExitStatus.hpp"
#include "tools/zqpaths/Options.hpp"
#include "tools/zqpaths/ProgramTable.hpp"

namespace zqpaths {

const std::vector<std::string>& documentKinds();  // "man", "bash", "zsh", "fish"

/// One of documentKinds().
std::string makeDocument(const std::string& kind, const ProgramTable& table);

/// Prints one.
ExitStatus runDocument(const DocumentOptions& options, const MessageOptions& messages);

}  // namespace zqpaths
