#pragma once
// PieceReport is what there is to say of a piece of work that is done. It stands in a file beside
// the set file of the piece and travels to rank 0, as JSON:
//
//     {"paths":2,"leftOut":{"hidden":1,...},"unreadable":1,"firstUnreadable":"/a: No such file
//     ..."}
//
// Threads: values, and free functions without state.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/zqpaths/sources/SourceReport.hpp"

namespace zqpaths::program::mpi {

struct PieceReport {
    std::uint64_t pathCount = 0;  // without any there is no set file
    SourceReport source;

    bool operator==(const PieceReport&) const = default;
};

std::string encodeReport(const PieceReport& report);

/// Nothing if it is none.
std::optional<PieceReport> decodeReport(std::string_view text);

}  // namespace zqpaths::program::mpi
