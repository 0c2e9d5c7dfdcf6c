#pragma once
// StandardOutput holds bytes back until there are many, and loses none in silence: a write that
// fails throws, one into a closed pipe ClosedPipe.
//
//     StandardOutput out;
//     out.buffer() += "a line\n";
//     out.flushIfFull();
//     out.flush();
//
// Threads: an object belongs to one thread at a time, and there is one at a time.

#include <unistd.h>

#include <cstddef>
#include <string>
#include <utility>

namespace zqpaths::program {

/// The reader of standard output has gone; main ends the program as the system would have.
class ClosedPipe {};

/// Ends the process by the signal that a write into a closed pipe sends: whoever reads has what it
/// wants, and a shell knows the status (141). Called when all that had to be cleaned up is; returns
/// only where the signal is blocked.
void endByClosedPipe() noexcept;

/// Where output goes: standard output, unless a file is written in its place.
struct OutputPlace {
    int descriptor = STDOUT_FILENO;
    std::string name = "standard output";  // for messages
};

class StandardOutput {
public:
    static constexpr std::size_t kBufferedBytes = std::size_t{1} << 18;

    explicit StandardOutput(OutputPlace place = {}) : place_(std::move(place)) {}
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;

    /// What is held back; it is lost when the object is destroyed.
    std::string& buffer() noexcept { return buffer_; }

    /// Writes what is held back. Throws Failure kFailed or ClosedPipe.
    void flush();

    void flushIfFull() {
        if (buffer_.size() >= kBufferedBytes) flush();
    }

private:
    const OutputPlace place_;
    std::string buffer_;
};

}  // namespace zqpaths::program
