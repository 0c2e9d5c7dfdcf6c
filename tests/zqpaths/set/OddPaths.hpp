#pragma once
// Paths that try whoever keeps them:
//
//     for (const std::string& path : randomPaths(1000, 7)) ...   // any bytes but NUL
//     for (const std::string& path : separatorPaths(5)) ...      // "a", "/", "aa", "a/", "/a",
//     "//" ...
//
// Threads: free functions without state.

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace zqpaths {

/// Byte strings of few names, so that folders are met again, next to any bytes at all.
inline std::vector<std::string> randomPaths(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    const std::vector<std::string> names{"a",        "usr", "caf\xC3\xA9", "\xF0\x9F\x98\x80",
                                         "\xFF\xC3", "/"};
    std::vector<std::string> paths;
    while (paths.size() < count) {
        std::string path;
        const std::size_t parts = 1 + below(6);
        for (std::size_t part = 0; part < parts; ++part) {
            if (below(3) > 0) path += '/';
            if (below(2) > 0) {
                path += names[below(names.size())];
                continue;
            }
            const std::size_t length = below(5);
            for (std::size_t i = 0; i < length; ++i) path += static_cast<char>(1 + below(255));
        }
        if (!path.empty()) paths.push_back(path);
        // A path that is also the folder of the next, and one that comes twice.
        if (!path.empty() && below(10) == 0) paths.push_back(path + "/inside");
        if (!path.empty() && below(10) == 0) paths.push_back(path);
    }
    paths.resize(count);
    return paths;
}

/// All paths of up to `length` characters of which each is a separator or not.
inline std::vector<std::string> separatorPaths(std::size_t length) {
    std::vector<std::string> paths;
    std::vector<std::string> last{""};
    for (std::size_t i = 0; i < length; ++i) {
        std::vector<std::string> longer;
        for (const std::string& path : last) {
            longer.push_back(path + 'a');
            longer.push_back(path + '/');
        }
        paths.insert(paths.end(), longer.begin(), longer.end());
        last = longer;
    }
    return paths;
}

}  // namespace zqpaths
