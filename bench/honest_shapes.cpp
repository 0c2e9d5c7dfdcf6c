// Time and memory of honest work of every shape and size:  honest_shapes [MOST [SHAPE]]
//
// For each shape, 10^4 paths or characters and ten times as many up to MOST (10^7): makes a set of
// them in a file, or codes them; reads all, finds the last one, verifies. Each runs in a process of
// its own, whose processor time and largest resident memory are told, and how many times as much a
// byte of text takes as it does at a tenth of the size: 1 is linear. The status is 1 if one of them
// is above kMostGrowth.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/text/PathText.hpp"

namespace {

using AddPath = std::function<void(std::string_view)>;

constexpr double kMostGrowth = 3;
constexpr std::uint64_t kLeast = 10'000;
constexpr std::size_t kCharacters = 65'536;
constexpr std::size_t kCharactersOfComb = 256;

std::string digits(std::uint64_t number) {
    return std::to_string(number);
}

// --- Paths of a shape.

void subfoldersOfOneFolder(std::uint64_t count, const AddPath& add) {
    for (std::uint64_t i = 0; i < count; ++i) add("folder/" + digits(i) + "/file");
}

void levels(std::uint64_t count, const AddPath& add) {
    std::string path;
    for (std::uint64_t i = 0; i < count; ++i) path += "d/";
    add(path + "file");
}

void withoutFolder(std::uint64_t count, const AddPath& add) {
    for (std::uint64_t i = 0; i < count; ++i) add(digits(i));
}

void alternatingFolders(std::uint64_t count, const AddPath& add) {
    for (std::uint64_t i = 0; i < count; ++i) add((i % 2 == 0 ? "one/" : "other/") + digits(i));
}

void onePathRepeated(std::uint64_t count, const AddPath& add) {
    for (std::uint64_t i = 0; i < count; ++i) add("folder/file");
}

void namesOfOneMebibyte(std::uint64_t count, const AddPath& add) {
    constexpr std::uint64_t kBytesOfOthers = 10;  // as much text as the other shapes have
    std::string name(std::size_t{1} << 20, 'n');
    for (std::uint64_t i = 0; i * name.size() < count * kBytesOfOthers; ++i) {
        name.replace(0, digits(i).size(), digits(i));
        add("folder/" + name);
    }
}

/// Three units a name, each unit in its turn; those that bytes do not give are left out.
void allCharacters(std::uint64_t count, const AddPath& add) {
    std::string name;
    char16_t unit = 0;
    for (std::uint64_t i = 0; i < count; ++i) {
        std::u16string units;
        while (units.size() < 3) {
            ++unit;
            const bool isPartOfPair = unit >= 0xD800 && unit <= 0xDC7F;
            if (unit != 0 && unit != u'/' && !isPartOfPair) units.push_back(unit);
        }
        name.clear();
        zqpaths::appendBytes(units, name);
        add(name);
    }
}

/// A set in a file, from beginning to end. Returns the bytes of its text.
std::uint64_t makeAndRead(const std::string& file,
                          const std::function<void(const AddPath&)>& paths) {
    std::uint64_t size = 0;
    std::string last;
    {
        zqpaths::PathSetWriter writer(file);
        paths([&](std::string_view path) {
            writer.add(path);
            size += path.size();
            last = path;
        });
        writer.commit();
    }
    const zqpaths::PathSet set = zqpaths::PathSet::open(file);
    std::uint64_t read = 0;
    set.forEach([&](std::uint64_t, std::string_view path) { read += path.size(); });
    if (read != size || !set.numberOf(last) || !set.verify().empty())
        throw std::runtime_error("the set is not what it was made of");
    return size;
}

// --- Codes.

std::vector<double> fibonacci() {
    std::vector<double> frequencies{1, 1};
    while (frequencies.size() < 40)
        frequencies.push_back(frequencies.back() + frequencies[frequencies.size() - 2]);
    return frequencies;
}

/// Names of the characters of a code, coded and decoded. Returns bytes of text.
std::uint64_t codeAndDecode(std::uint64_t count, std::span<const double> frequencies) {
    constexpr std::size_t kNameLength = 100;
    std::u16string characters;
    for (std::size_t i = 0; i < frequencies.size(); ++i)
        characters.push_back(static_cast<char16_t>(i));
    compressedpaths::HuffmanPathTree code;
    code.deflateHuffman(frequencies.data(), characters);
    std::uint64_t size = 0;
    std::u16string name(kNameLength, u'\0');
    for (std::uint64_t i = 0; i < count; i += kNameLength) {
        for (std::size_t k = 0; k < kNameLength; ++k)
            name[k] = characters[(i + k) % characters.size()];
        if (code.generatePathFrom(code.generateCodeFor(name)) != name)
            throw std::runtime_error("a name is not what it was");
        size += name.size() * sizeof(char16_t);
    }
    return size;
}

struct Shape {
    const char* name;
    std::function<std::uint64_t(std::uint64_t count, const std::string& file)> work;
};

template <class Paths>
Shape ofPaths(const char* name, Paths paths) {
    return {name, [paths](std::uint64_t count, const std::string& file) {
                return makeAndRead(file, [&](const AddPath& add) { paths(count, add); });
            }};
}

Shape ofCode(const char* name, std::vector<double> frequencies) {
    return {name, [frequencies = std::move(frequencies)](std::uint64_t count, const std::string&) {
                return codeAndDecode(count, frequencies);
            }};
}

std::vector<Shape> shapes() {
    return {
        ofPaths("sub-folders of one folder", subfoldersOfOneFolder), ofPaths("levels", levels),
        ofPaths("entries without folder", withoutFolder),
        ofPaths("alternating folders", alternatingFolders),
        ofPaths("one path repeated", onePathRepeated),
        ofPaths("names of 1 MiB", namesOfOneMebibyte), ofPaths("all characters", allCharacters),
        ofCode("Fibonacci frequencies", fibonacci()),
        ofCode("equal frequencies", std::vector<double>(kCharacters, 1)),
        // Trees of these are combs: each character has a word one bit longer than the next.
        ofCode("frequencies of zero", std::vector<double>(kCharactersOfComb, 0)),
        ofCode("infinite frequencies",
               std::vector<double>(kCharactersOfComb, std::numeric_limits<double>::infinity()))};
}

// --- Measuring.

struct Cost {
    double seconds = 0;
    double megabytes = 0;
    std::uint64_t textSize = 0;
};

double secondsOf(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// What the work costs in a process of its own. Throws what ends it.
Cost costOf(const Shape& shape, std::uint64_t count, const std::string& file) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
    const pid_t process = ::fork();
    if (process == 0) {
        try {
            const std::uint64_t size = shape.work(count, file);
            const ssize_t written = ::write(ends[1], &size, sizeof size);
            ::_exit(written == sizeof size ? 0 : 1);
        } catch (const std::exception& error) {
            std::cerr << shape.name << ", " << count << ": " << error.what() << '\n';
            ::_exit(1);
        }
    }
    Cost cost;
    ::close(ends[1]);
    const ssize_t size = ::read(ends[0], &cost.textSize, sizeof cost.textSize);
    ::close(ends[0]);
    int status = 0;
    rusage usage{};
    ::wait4(process, &status, 0, &usage);
    std::filesystem::remove(file);
    if (status != 0 || size != sizeof cost.textSize) throw std::runtime_error("a process failed");
    cost.seconds = secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime);
    cost.megabytes = static_cast<double>(usage.ru_maxrss) * 1024 / 1e6;
    return cost;
}

/// One row a size; returns the largest growth.
double measure(const Shape& shape, std::uint64_t most, const std::string& file) {
    double mostGrowth = 0;
    double before = 0;
    for (std::uint64_t count = kLeast; count <= most; count *= 10) {
        const Cost cost = costOf(shape, count, file);
        const double nanoseconds = 1e9 * cost.seconds / static_cast<double>(cost.textSize);
        const double growth = before == 0 ? 0 : nanoseconds / before;
        // Below some hundredths of a second, what a process takes to start counts most.
        if (cost.seconds > 0.05) mostGrowth = std::max(mostGrowth, growth);
        before = nanoseconds;
        std::printf("| %s | %llu | %.1f | %.3f | %.1f | %.1f | %.2f |\n", shape.name,
                    static_cast<unsigned long long>(count),
                    static_cast<double>(cost.textSize) / 1e6, cost.seconds, nanoseconds,
                    cost.megabytes, growth);
        std::fflush(stdout);
    }
    return mostGrowth;
}

}  // namespace

int main(int argumentCount, char** arguments) try {
    const std::uint64_t most =
        argumentCount > 1 ? std::strtoull(arguments[1], nullptr, 10) : 10'000'000;
    const std::string_view only = argumentCount > 2 ? arguments[2] : "";
    std::string folder = (std::filesystem::temp_directory_path() / "shapes-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) throw std::runtime_error("no folder");
    std::puts("| shape | size | MB of text | s | ns a byte | MB resident | growth |");
    std::puts("|---|---|---|---|---|---|---|");
    double growth = 0;
    for (const Shape& shape : shapes())
        if (only.empty() || only == shape.name)
            growth = std::max(growth, measure(shape, most, folder + "/s.zqp"));
    std::filesystem::remove_all(folder);
    std::printf("\nlargest growth %.2f, at most %.0f\n", growth, kMostGrowth);
    return growth <= kMostGrowth ? 0 : 1;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
