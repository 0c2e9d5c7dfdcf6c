#pragma once
// The page of a report: one file of HTML with data, style and scripts in it, which needs no network
// and may use none.
//
//     const std::string html = reportPage(printableName, data);
//
// Threads: a free function without state.

#include <string>
#include <string_view>

namespace zqpaths::program {

/// `title` is any text without control characters; `data` is JSON as withoutMarkup leaves it.
std::string reportPage(std::string_view title, std::string_view data);

}  // namespace zqpaths::program
