#include "tools/zqpaths/sets/MemoryInUse.hpp"

#include <malloc.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <unordered_set>

namespace zqpaths::program {
namespace {

constexpr std::uint64_t kBytesAKibibyte = 1024;
constexpr std::string_view kResident = "Rss:";

/// The name as the system writes it, which ends lines with newlines.
std::string nameInMappings(const std::string& file) {
    std::error_code isNotThere;
    const std::filesystem::path path = std::filesystem::canonical(file, isNotThere);
    std::string name;
    for (const char character : path.native())
        if (character == '\n')
            name += "\\012";
        else
            name += character;
    return name;
}

/// Where the name is in a line that begins a mapping, after five words and spaces; at its end if
/// there is none.
std::size_t nameIn(const std::string& line) {
    std::size_t at = 0;
    for (int word = 0; word < 5; ++word)
        at = std::min(line.find_first_not_of(' ', std::min(line.find(' ', at), line.size())),
                      line.size());
    return at;
}

/// Of "Rss:   484 kB".
std::uint64_t kibibytesOf(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_of("0123456789"), line.size()));
    std::uint64_t count = 0;
    std::from_chars(line.data(), line.data() + line.size(), count);
    return count;
}

}  // namespace

std::uint64_t allocatedBytes() noexcept {
    const struct mallinfo2 use = mallinfo2();
    return use.uordblks + use.hblkhd;  // in heaps, and in mappings of their own
}

// A mapping is a line that ends with the name of its file, then lines of what it takes:
//
//     7f0c1d000000-7f0c24e83000 r--s 00000000 fe:01 1234     /data/usr.zqp
//     Size:             129548 kB
//     Rss:                 484 kB
std::optional<std::uint64_t> residentBytesOf(const std::vector<std::string>& files) {
    std::unordered_set<std::string> names;
    for (const std::string& file : files) names.insert(nameInMappings(file));
    names.erase("");  // of a file that is not there, and of what is mapped without one
    std::ifstream mappings("/proc/self/smaps");
    std::optional<std::uint64_t> bytes;
    bool isOfFile = false;
    for (std::string line; std::getline(mappings, line);) {
        const bool beginsMapping = line.find('-') < line.find(' ');
        if (beginsMapping) isOfFile = names.contains(line.substr(nameIn(line)));
        if (isOfFile && line.starts_with(kResident))
            bytes = bytes.value_or(0) + kibibytesOf(line) * kBytesAKibibyte;
    }
    return bytes;
}

}  // namespace zqpaths::program
