#pragma once
// Bytes from and to descriptors of the system that wait until there is something to do. A signal
// that is caught meanwhile ends no transfer, but one that DeferredSignals has noted ends the wait
// for bytes.
//
// Threads: free functions without state.

#include <cstddef>
#include <string_view>

namespace zqpaths::program {

/// Reads up to `size` bytes and returns how many, 0 at the end. Throws Failure kFailed at `place`.
std::size_t readSome(int descriptor, void* bytes, std::size_t size, std::string_view place);

/// Writes all bytes. Throws Failure kFailed at `place`; some may have been written then.
void writeAll(int descriptor, const void* bytes, std::size_t size, std::string_view place);

}  // namespace zqpaths::program
