#pragma once
// The plan of an index that is being made, as it stands in its folder until all is whole, so that
// work which was cut off can be resumed:
//
//     {"plan":1,"generation":1,"replaces":false,"folder":"/data","pieceSize":67108864,
//      "options":[{"name":"list","value":""}],
//      "sources":[{"path":"all.txt","kind":"lines","size":472000000,"changed":1690000000000000000}],
//      "pieces":[[{"source":0,"begin":0,"end":59000000}],...]}
//
// Threads: free functions without state.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/zqpaths-mpi/input/InputPlan.hpp"

namespace zqpaths::program::mpi {

/// What is said of the set that is made, whatever it is made of.
struct PlanSummary {
    unsigned generation;  // tells its set files from those that an older set still has
    bool mayReplace;      // the older set
    std::size_t pieceCount;
};

/// The number of pieces is that of the plan.
std::string encodePlan(const InputPlan& plan, const SourceOptions& options,
                       const PlanSummary& summary);

/// Nothing if it is no plan, or one that only a later version knows.
std::optional<PlanSummary> summaryOfPlan(std::string_view text);

/// Throws Failure kFailed at `place`, or at the name of a source, and says what is not the same:
/// the options, the sources, or what is in these. Both texts are plans.
void requireSamePlan(std::string_view begun, std::string_view present, std::string_view place);

}  // namespace zqpaths::program::mpi
