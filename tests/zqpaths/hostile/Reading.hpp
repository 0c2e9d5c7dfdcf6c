#pragma once
// What a user does with a file of somebody else: opens it, fetches paths, goes through all of them,
// searches, verifies, looks at its statistics, and takes its paths over. Each is answered, or
// refused with an Error; what each takes is measured, in a process of its own.
//
//     const Reading reading = readAlone("s.zqp", Kind::kImage, 20);
//     reading.failure;    // empty, or what should not have been
//     reading.peakBytes;  // of the heap
//
// Threads: for programs of one thread: it forks.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/zqpaths/hostile/HostileFiles.hpp"

namespace hostile {

/// Plain bytes, as a pipe carries them.
struct Reading {
    std::uint64_t answered = 0;  // questions
    std::uint64_t refused = 0;
    std::uint64_t statedText = 0;  // bytes that the file says its paths have
    std::uint64_t givenText = 0;   // bytes of paths that were given, by all questions
    std::uint64_t peakBytes = 0;   // held at once by the heap; 0 where that cannot be metered
    double seconds = 0;            // of processors, all questions together
    double slowestSeconds = 0;
    std::array<char, 32> slowest{};   // the question that took most
    std::array<char, 128> refusal{};  // the first one
    std::array<char, 256> failure{};  // what is neither an answer nor an Error
};

/// Asks all questions, once each.
Reading readSet(const std::string& file);
Reading readPieces(const std::string& file);

/// The same in a child process that is ended after so many seconds of processors. Throws
/// std::runtime_error if there can be no process.
Reading readAlone(const std::string& file, Kind kind, unsigned mostSeconds);

/// What is promised.
inline constexpr std::uint64_t kMostMemory = std::uint64_t{64} << 20;

}  // namespace hostile
