#pragma once
// The descriptors of standard input, output and error.

namespace zqpaths::program {

/// Fills those that the program was started without, so that no file it opens becomes one of them:
/// reading from such an input and writing to such an output fail. Throws Failure kFailed.
void reserveStandardStreams();

}  // namespace zqpaths::program
