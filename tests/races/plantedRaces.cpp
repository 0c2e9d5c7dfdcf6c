// Programs with a race that is there on purpose: the thread sanitizer must report it, or its
// silence about the other tests says nothing. Which one is the argument:
//
//     planted_races loop     two parts of a parallel loop count in one place
//     planted_races before   a part reads what is written after the loop has begun
//     planted_races readers  readers of one opened set count in one place
//     planted_races none     nothing of the kind

#include <atomic>
#include <cstring>
#include <iostream>
#include <thread>
#include <vector>

#include "compressedpaths/coding/ParallelLoop.hpp"
#include "tests/zqpaths/SegmentedSets.hpp"

namespace {

using compressedpaths::inParallel;

/// Has two threads meet, without an order that the sanitizer would see.
class Meeting {
public:
    void come() noexcept {
        constexpr int kMostTurns = 10'000'000;  // where one thread does all, it goes on alone
        came_.fetch_add(1, std::memory_order_relaxed);
        for (int i = 0; i < kMostTurns && came_.load(std::memory_order_relaxed) < 2; ++i)
            std::this_thread::yield();
    }

private:
    std::atomic<int> came_{0};
};

int raceInLoop(bool isPlanted) {
    int shared = 0;
    std::vector<int> own(2);
    Meeting meeting;
    inParallel(2, [&](std::size_t first, std::size_t end) {
        meeting.come();
        for (std::size_t i = first; i < end; ++i) ++(isPlanted ? shared : own[i]);
    });
    return shared + own[0] + own[1];
}

int raceWithCaller() {
    int written = 0;
    int read = 0;
    Meeting meeting;
    std::thread other([&] {
        inParallel(1, [&](std::size_t, std::size_t) {
            meeting.come();
            read = written;
        });
    });
    meeting.come();
    written = 1;
    other.join();
    return read;
}

std::uint64_t raceOfReaders() {
    const zqpaths::SegmentedSet made({{zqpaths::SegmentForm::kImage, {"a/b", "a/c", "d"}}});
    const zqpaths::PathSet set = made.open();
    std::uint64_t byteCount = 0;
    Meeting meeting;
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([&] {
            meeting.come();
            set.forEach([&](std::uint64_t, std::string_view path) { byteCount += path.size(); });
        });
    for (std::thread& reader : readers) reader.join();
    return byteCount;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const char* const which = argumentCount > 1 ? arguments[1] : "";
    if (std::strcmp(which, "loop") == 0) {
        std::cout << raceInLoop(true) << '\n';
    } else if (std::strcmp(which, "before") == 0) {
        std::cout << raceWithCaller() << '\n';
    } else if (std::strcmp(which, "readers") == 0) {
        std::cout << raceOfReaders() << '\n';
    } else if (std::strcmp(which, "none") == 0) {
        std::cout << raceInLoop(false) << '\n';
    } else {
        std::cerr << "usage: planted_races loop|before|readers|none\n";
        return 2;
    }
    return 0;
}
