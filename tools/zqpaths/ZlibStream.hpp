#pragma once
// The zlib stream of a saved form, inflated.
//
// Threads: free functions without state.

#include <cstdint>
#include <span>
#include <vector>

namespace zqpaths {

/// What is in the stream, at most `byteSize` bytes. Throws Failure kDamaged, with the offset, if
/// the stream is broken or cut before that, and before memory is taken if no stream of its length
/// can hold so much.
std::vector<std::uint8_t> inflateStream(std::span<const std::uint8_t> stream,
                                        std::uint64_t byteSize);

/// How many bytes of the stream each piece takes, of pieces that follow one another in what is in
/// it; exact to a few bytes, as pieces may share one. Requires that inflateStream has read them.
std::vector<std::uint64_t> deflatedSizes(std::span<const std::uint8_t> stream,
                                         std::span<const std::uint64_t> byteSizes);

}  // namespace zqpaths
