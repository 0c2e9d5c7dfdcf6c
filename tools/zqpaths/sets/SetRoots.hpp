#pragma once
// The directories that a set is compared with: those that it was made of, or others.
//
//     for (const SetRoot& root : rootsOf("usr.zqp", scansOf(set), options.source))
//         update.run(root.path, root.options, root.scan);

#include <string>
#include <vector>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "zqpaths/directory/DirectoryWalk.hpp"
#include "zqpaths/directory/ScanRecord.hpp"

namespace zqpaths::program {

struct SetRoot {
    std::string path;
    WalkOptions options;         // those that it was read with, if it was
    const Scan* scan = nullptr;  // what the set remembers of it
    bool isPart = false;         // it lies in one that the set remembers
};

/// The directories of `source`, without any all that the set remembers. The set's file is left out
/// of what is in them. Throws Failure kFailed if there are none, for a new one that is no
/// directory, and if `source` says how to read one that was read in another way.
std::vector<SetRoot> rootsOf(const std::string& set, const std::vector<Scan>& scans,
                             const SourceOptions& source);

/// The names of all of them, for SetUpdate.
std::vector<std::string> allRoots(const std::vector<Scan>& scans,
                                  const std::vector<SetRoot>& roots);

}  // namespace zqpaths::program
