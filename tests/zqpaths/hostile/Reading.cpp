#include "tests/zqpaths/hostile/Reading.hpp"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <random>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "tests/support/SetFiles.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/set/Pieces.hpp"
#include "zqpaths/set/SetStatistics.hpp"
#include "zqpaths/totals/FolderTotals.hpp"
#include "zqpaths/update/SetScans.hpp"
#ifdef ZQ_METERS_HEAP
#include "tests/support/HeapMeter.hpp"
#endif

namespace hostile {
namespace {

using namespace zqpaths;

/// So that what takes all memory takes none from others.
constexpr rlim_t kMostAddresses = rlim_t{2} << 30;

double processorSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

template <std::size_t size>
void putText(std::array<char, size>& out, std::string_view text) {
    out = {};
    std::copy_n(text.begin(), std::min(text.size(), size - 1), out.begin());
}

/// Asks, and keeps account.
class Questions {
public:
    template <class Ask>
    void ask(const char* what, Ask ask) {
        const double begin = processorSeconds();
        try {
            ask();
            ++reading_.answered;
        } catch (const Error& error) {
            if (reading_.refused++ == 0) putText(reading_.refusal, error.what());
        } catch (const std::exception& error) {
            putText(reading_.failure, std::string(what) + ": " + error.what());
        }
        const double seconds = processorSeconds() - begin;
        reading_.seconds += seconds;
        if (seconds <= reading_.slowestSeconds) return;
        reading_.slowestSeconds = seconds;
        putText(reading_.slowest, what);
    }

    /// What looks at the paths that it is given.
    auto look() {
        return [this](std::uint64_t /*number*/, std::string_view path) {
            reading_.givenText += path.size();
        };
    }

    Reading& reading() noexcept { return reading_; }

private:
    Reading reading_;
};

std::vector<std::uint64_t> someNumbers(std::uint64_t size) {
    constexpr std::size_t kSome = 100;
    std::mt19937_64 random(size);
    std::vector<std::uint64_t> numbers{1, size / 2 + 1, size};
    while (numbers.size() < kSome) numbers.push_back(1 + random() % size);
    return numbers;
}

/// By their numbers, one by one and together; and of some, whether they are gone.
void askForSome(const PathSet& set, Questions& questions) {
    const std::vector<std::uint64_t> numbers = someNumbers(set.size());
    for (const std::uint64_t number : numbers) {
        questions.ask("a path", [&] { questions.reading().givenText += set.path(number).size(); });
        questions.ask("is it gone", [&] {
            set.isGone(number);
            if (set.presentCount() > 0) set.presentNumber((number - 1) % set.presentCount());
        });
    }
    questions.ask("some paths", [&] { set.paths(numbers, questions.look()); });
}

void askForAll(const PathSet& set, Questions& questions) {
    questions.ask("all paths", [&] { set.forEach(questions.look()); });
    questions.ask("all paths, the last one first",
                  [&] { set.forEach(set.size(), 1, questions.look()); });
    questions.ask("an iterator", [&] {
        for (const std::string_view path : set) questions.reading().givenText += path.size();
    });
    questions.ask("a walk", [&] { set.walk(questions.look()); });
}

void askForFound(const PathSet& set, Questions& questions) {
    questions.ask("a text", [&] { set.find(Pattern::text("n"), questions.look()); });
    questions.ask("a text with a separator",
                  [&] { set.find(Pattern::text("d/f"), questions.look()); });
    questions.ask("a glob", [&] { set.count(Pattern::glob("*e?")); });
    std::string last;
    questions.ask("the last path", [&] { last = set.path(set.size()); });
    for (const std::string& path : {std::string("a/f"), std::string("a/none"), last})
        questions.ask("a number", [&] { set.numberOf(path); });
    for (const char* const folder : {"a", "a/b", "folder", "/"})
        questions.ask("a folder", [&] { set.under(folder, questions.look()); });
}

void askForWhole(const PathSet& set, const std::string& file, Questions& questions) {
    questions.ask("is it whole", [&] {
        const std::vector<Error> damages = set.verify();
        if (!damages.empty()) throw Error(damages.front());
    });
    questions.ask("statistics", [&] { statisticsOf(set, 10); });
    questions.ask("totals", [&] { FolderTotals(set).largest(10); });
    questions.ask("scans", [&] { scansOf(set); });
    questions.ask("taking it over", [&] {
        PathSetWriter writer(file + ".copy", PathSetWriter::Mode::kReplace);
        set.forEach([&](std::uint64_t, std::string_view path) { writer.add(path); });
        writer.commit();
    });
}

}  // namespace

Reading readSet(const std::string& file) {
    Questions questions;
    std::optional<PathSet> set;
    questions.ask("opening", [&] {
        set = PathSet::open(file);
        for (const PathSet::Segment& segment : set->segments())
            questions.reading().statedText += segment.textSize;
    });
    if (!set || set->size() == 0) return questions.reading();
    askForSome(*set, questions);
    askForFound(*set, questions);
    askForAll(*set, questions);
    askForWhole(*set, file, questions);
    return questions.reading();
}

Reading readPieces(const std::string& file) {
    Questions questions;
    questions.ask("import", [&] {
        const std::string form = contentOf(file);
        const std::string tree = contentOf(treeStringBeside(file));
        PathSetWriter writer(file + ".copy", PathSetWriter::Mode::kReplace);
        importPieces({{tree.begin(), tree.end()}, {form.begin(), form.end()}}, writer);
        writer.commit();
    });
    return questions.reading();
}

Reading readAlone(const std::string& file, Kind kind, unsigned mostSeconds) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    static_cast<void>(std::fflush(nullptr));  // or the child would write it, too
    const pid_t process = ::fork();
    if (process < 0) throw std::runtime_error("no process");
    if (process == 0) {
        const rlimit limit{mostSeconds, mostSeconds};
        ::setrlimit(RLIMIT_CPU, &limit);
        const rlimit memory{kMostAddresses, kMostAddresses};
        ::setrlimit(RLIMIT_AS, &memory);
#ifdef ZQ_METERS_HEAP
        const compressedpaths::HeapMeter meter;
#endif
        Reading reading = kind == Kind::kPieces ? readPieces(file) : readSet(file);
#ifdef ZQ_METERS_HEAP
        reading.peakBytes = meter.peak();
#endif
        const ssize_t written = ::write(ends[1], &reading, sizeof reading);
        // Not at once: what it has gone through is written down at its end where that is measured.
        std::exit(written == sizeof reading ? 0 : 1);
    }
    ::close(ends[1]);
    Reading reading;
    const ssize_t size = ::read(ends[0], &reading, sizeof reading);
    ::close(ends[0]);
    int status = 0;
    rusage usage{};
    ::wait4(process, &status, 0, &usage);
    if (size != sizeof reading || status != 0) {
        reading = {};
        reading.seconds = static_cast<double>(usage.ru_utime.tv_sec);
        putText(reading.failure, WIFSIGNALED(status)
                                     ? "ended by signal " + std::to_string(WTERMSIG(status))
                                     : "ended without a word");
    }
    return reading;
}

}  // namespace hostile
