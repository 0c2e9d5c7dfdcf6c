#pragma once
// SourceReport is what there is to say about a source of paths when it has been read: what it left
// out, and what it could not read.
//
// Threads: free functions without state.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "tools/zqpaths/ExitStatus.hpp"
#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "zqpaths/directory/LeftOutNames.hpp"

namespace zqpaths::program {

/// Takes "/a/b: Permission denied".
using UnreadableVisitor = std::function<void(std::string_view text)>;

struct SourceReport {
    LeftOutNames leftOut;
    std::uint64_t unreadableCount = 0;  // directories
    std::string firstUnreadable;        // "/a/b: Permission denied", for people

    /// What is said of two sources, one after the other.
    SourceReport& operator+=(const SourceReport& next);

    /// Tells it, unless there is nobody to tell.
    void addUnreadable(std::string_view path, std::string_view reason,
                       const UnreadableVisitor& onUnreadable);

    bool operator==(const SourceReport&) const = default;
};

/// Tells how many names were left out and why, a line each, unless the person wants errors only;
/// and that directories could not be read. Returns what a verb that has read the source ends with.
ExitStatus statusAfter(const SourceReport& report, const SourceOptions& options,
                       const MessageOptions& messages);

}  // namespace zqpaths::program
