#pragma once
// What a walk gives, collected:
//
//     const Walked walked = walkWhole("/usr", {});
//     walked.paths;   // in their order
//     walked.errors;  // "/usr/secret: Permission denied"
//
// Threads: free functions without state.

#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/directory/DirectoryWalk.hpp"

namespace zqpaths {

struct Walked {
    std::vector<std::string> paths;
    std::vector<std::string> errors;  // "PATH: REASON"
    LeftOutNames leftOut;

    bool operator==(const Walked&) const = default;
};

/// Visitors that collect what they are given; `walked` must outlive them.
inline WalkVisitors into(Walked& walked) {
    return {.onError =
                [&walked](std::string_view path, std::string_view reason) {
                    walked.errors.push_back(std::string(path).append(": ").append(reason));
                },
            .onPath = [&walked](std::string_view path) { walked.paths.emplace_back(path); }};
}

inline Walked walkWhole(const std::string& root, const WalkOptions& options = {}) {
    Walked walked;
    walked.leftOut = walkDirectory(root, options, into(walked));
    return walked;
}

}  // namespace zqpaths
