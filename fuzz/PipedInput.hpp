#pragma once
// Bytes that come through a pipe on standard input, in pieces as whoever writes them may choose:
//
//     const PipedInput piped(bytes, 3);  // a reader gets at most three bytes at a time
//     read("-");
//
// Standard input is what it was when the object is gone.
//
// Threads: one at a time in a process.

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>
#include <system_error>

namespace fuzzing {

class PipedInput {
public:
    /// All bytes are in the pipe when this returns: where they are so many that there is no room
    /// for pieces of that size, the pieces are larger. At most 60 KiB.
    PipedInput(std::span<const std::uint8_t> bytes, std::size_t pieceSize) : before_(::dup(0)) {
        // A packet of a pipe in this mode is what one read gives. It takes a page, whatever its
        // size.
        std::array<int, 2> ends{};
        if (before_ < 0 || ::pipe2(ends.data(), O_DIRECT | O_CLOEXEC) != 0) fail();
        const int size = ::fcntl(ends[1], F_SETPIPE_SZ, static_cast<int>(kPackets * kPage));
        const std::size_t packets =
            size < 0 ? kPacketsAtFirst : static_cast<std::size_t>(size) / kPage;
        pieceSize = std::max(pieceSize, bytes.size() / packets + 1);
        for (; !bytes.empty(); bytes = bytes.subspan(std::min(pieceSize, bytes.size())))
            if (::write(ends[1], bytes.data(), std::min(pieceSize, bytes.size())) < 0) fail();
        ::close(ends[1]);
        if (::dup2(ends[0], 0) < 0) fail();
        ::close(ends[0]);
    }
    PipedInput(const PipedInput&) = delete;
    PipedInput& operator=(const PipedInput&) = delete;
    ~PipedInput() {
        ::dup2(before_, 0);
        ::close(before_);
    }

private:
    static constexpr std::size_t kPage = 4096;
    static constexpr std::size_t kPackets = 128;
    static constexpr std::size_t kPacketsAtFirst = 16;

    [[noreturn]] static void fail() {
        throw std::system_error(errno, std::generic_category(), "a pipe");
    }

    int before_;
};

}  // namespace fuzzing
