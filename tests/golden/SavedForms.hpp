#pragma once
// The saved form of a path set, compared with what a record says of it.

#include <cstdint>
#include <map>
#include <string>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "tests/golden/RecordFields.hpp"

namespace compressedpaths::golden {

using Counters = std::map<std::string, std::uint64_t>;  // by name

/// The members of an object of integers.
Counters recordedCounters(const Json& object);

/// Saves `set` in both forms and compares them with the fields of a "serialize" step.
void expectSavedForms(HuffmanPathTree& set, Fields& step);

/// Compares the form that `set` saves with the lossless one of a "truncated_form" step, and what
/// reading both of its forms gives.
void expectLosslessForm(HuffmanPathTree& set, Fields& step);

}  // namespace compressedpaths::golden
