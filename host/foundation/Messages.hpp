#pragma once
// The message catalogue holds the texts of errors by component and key. A text has holes that are
// numbered from 1 and take the arguments of a message:
//
//     messages::add("KORVEX:printer", "outOfPaper", "tray {1} of {2} is empty");
//     messages::format("KORVEX:printer", "outOfPaper", {"2", "desk"});
//         // "tray 2 of desk is empty"
//
// Threads: safe for concurrent use.

#include <string>
#include <string_view>
#include <vector>

#include "host/Export.hpp"

namespace foundation::core::messages {

/// Sets a text; one that was there is replaced.
KORVEX_API void add(std::string_view component, std::string_view key, std::string_view text);

/// The text with its holes filled. A hole without an argument stays as it is; without a text, the
/// result is the identifier and the arguments, so that no message is ever lost.
KORVEX_API std::string format(std::string_view component, std::string_view key,
                              const std::vector<std::string>& arguments);

}  // namespace foundation::core::messages
