#pragma once
// How the host calls the methods of libraries: inputs are brought to their declared types before
// and outputs after the call, and nothing is lost if one of the three fails.

#include <cstdint>
#include <vector>

#include "host/kobj/COSMethodInfo.hpp"
#include "host/runtime/Arrays.hpp"
#include "host/runtime/Object.hpp"

namespace korvex {

/// Calls `method` for `outputCount` outputs. `firstOutput` is what the method finds in its first
/// output slot. The result has as many outputs as the method says that there are, or as it has set
/// in front; an optional output that it has not set is an empty Array among them.
///
/// With a wrong number of inputs or outputs the method gets the inputs as they are: it refuses them
/// before it looks at any, in its own words.
///
/// Throws wrongInput, wrongOutput, missingOutput and whatever the method throws.
std::vector<Array> callMethod(kobj::COSMethodInfo& method, std::int32_t outputCount,
                              const Inputs& inputs, Array firstOutput = Array());

}  // namespace korvex
