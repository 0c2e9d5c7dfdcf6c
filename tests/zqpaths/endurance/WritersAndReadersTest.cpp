// Several processes add to one set and write it anew while others read it: no path is lost, none
// comes twice, and each reader sees what was committed before it opened the file.

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <charconv>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/TemporaryTree.hpp"
#include "tests/zqpaths/endurance/Duration.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace zqpaths {
namespace {

constexpr std::size_t kWriters = 3;
constexpr std::size_t kReaders = 3;

/// Writer 1 adds "1/0", "1/1", "1/2" and so on: the number of a path among its own is how many the
/// writer had added before.
std::string pathOf(std::size_t writer, std::uint64_t place) {
    return std::to_string(writer) + '/' + std::to_string(place);
}

void requireThat(bool holds, const std::string& law) {
    if (!holds) throw std::runtime_error(law);
}

/// What all processes see.
struct Shared {
    std::array<std::atomic<std::uint64_t>, kWriters> committed{};  // paths, at least
    std::array<std::atomic<std::uint64_t>, kWriters> begun{};      // paths, at most
    std::atomic<std::uint64_t> commitCount{0};
    std::atomic<std::uint64_t> readCount{0};
};

class Work {
public:
    explicit Work(const std::string& file) : file_(file) {
        void* const memory = ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                                    MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        shared_ = new (memory) Shared;
    }
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;
    ~Work() { ::munmap(shared_, sizeof(Shared)); }

    const Shared& shared() const noexcept { return *shared_; }

    void write(std::size_t writer) {
        std::mt19937 random(static_cast<unsigned>(writer));
        while (!duration_.isOver()) {
            if (random() % 8 == 0)
                writeAnew();
            else
                addSome(writer, random);
        }
    }

    void read() {
        while (!duration_.isOver()) {
            const auto least = countsIn(shared_->committed);
            const PathSet set = PathSet::open(file_);
            const auto most = countsIn(shared_->begun);
            std::array<std::uint64_t, kWriters> seen{};
            set.forEach([&](std::uint64_t, std::string_view path) { see(path, seen); });
            for (std::size_t i = 0; i < kWriters; ++i) {
                requireThat(seen[i] >= least[i], "a path that was committed is not there");
                requireThat(seen[i] <= most[i], "there is a path that nobody committed");
            }
            requireThat(set.verify().empty(), "a sum does not hold");
            ++shared_->readCount;
        }
    }

private:
    using Counts = std::array<std::uint64_t, kWriters>;

    static Counts countsIn(const std::array<std::atomic<std::uint64_t>, kWriters>& shared) {
        Counts counts{};
        for (std::size_t i = 0; i < kWriters; ++i) counts[i] = shared[i];
        return counts;
    }

    static void see(std::string_view path, Counts& seen) {
        const auto writer = static_cast<std::size_t>(path.front() - '0');
        std::uint64_t place = 0;
        std::from_chars(path.data() + 2, path.data() + path.size(), place);
        requireThat(place == seen[writer]++, "the paths of a writer are not in their order");
    }

    /// Adds some paths, or begins to and gives up.
    void addSome(std::size_t writer, std::mt19937& random) {
        const std::uint64_t before = shared_->committed[writer];
        const std::uint64_t after = before + 1 + random() % 20;
        PathSetWriter adding(file_, PathSetWriter::Mode::kAppend);
        for (std::uint64_t place = before; place < after; ++place)
            adding.add(pathOf(writer, place));
        if (random() % 4 == 0) return;
        shared_->begun[writer] = after;
        adding.commit();
        shared_->committed[writer] = after;
        ++shared_->commitCount;
    }

    /// The set in a new file, which others may have opened meanwhile.
    void writeAnew() {
        PathSetWriter writer(file_, PathSetWriter::Mode::kReplace);
        writer.addSet(PathSet::open(file_));
        writer.commit();
    }

    std::string file_;
    Duration duration_;
    Shared* shared_;
};

/// A forked process that does some work; its status is 0 if nothing was thrown.
template <class Do>
pid_t startProcess(Do work) {
    const pid_t process = ::fork();
    if (process != 0) return process;
    try {
        work();
        ::_exit(0);
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        ::_exit(1);
    }
}

TEST(WritersAndReaders, loseNoPathAndSeeWhatWasCommitted) {
    const test_support::TemporaryTree tree;
    const std::string file = tree.pathOf("s.zqp");
    PathSetWriter(file).commit();
    Work work(file);
    std::vector<pid_t> processes;
    for (std::size_t i = 0; i < kWriters; ++i)
        processes.push_back(startProcess([&] { work.write(i); }));
    for (std::size_t i = 0; i < kReaders; ++i)
        processes.push_back(startProcess([&] { work.read(); }));
    for (const pid_t process : processes) {
        int status = -1;
        ASSERT_EQ(::waitpid(process, &status, 0), process);
        EXPECT_EQ(status, 0);
    }
    std::uint64_t pathCount = 0;
    for (const auto& committed : work.shared().committed) pathCount += committed;
    EXPECT_EQ(PathSet::open(file).size(), pathCount);
    EXPECT_GT(work.shared().commitCount, 0U);
    EXPECT_GT(work.shared().readCount, 0U);
    std::cout << work.shared().commitCount << " commits of " << pathCount << " paths, read "
              << work.shared().readCount << " times" << std::endl;
}

}  // namespace
}  // namespace zqpaths
