#pragma once
// What is said of a set that was verified.
//
// Threads: as Output.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/output/Output.hpp"
#include "zqpaths/Error.hpp"

namespace zqpaths::program {

struct VerifiedSet {
    std::string file;
    std::uint64_t pathCount = 0;
    std::optional<std::uint64_t> missingCount{};  // on disk, where that was looked at
    std::optional<std::uint64_t> unreadCount{};   // in files that a set of sets may lack
};

/// Tells every damage but one, which it throws; returns if there is none. Programs get them all in
/// one object. The one thrown is kDamaged if any is: a file that is not there says less.
void requireNoDamage(const VerifiedSet& set, const std::vector<Error>& damages,
                     const OutputOptions& options, Output& output);

/// Says that the set is whole.
void tellWhole(const VerifiedSet& set, const OutputOptions& options, const MessageOptions& messages,
               Output& output);

}  // namespace zqpaths::program
