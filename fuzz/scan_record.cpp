// Any bytes as a record of scans. What is read is a tree, and comes back when it is written.

#include <limits>

#include "fuzz/Require.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/directory/ScanRecord.hpp"

using namespace zqpaths;
using fuzzing::require;
using fuzzing::succeeds;

namespace {

void check(const Scan& scan) {
    require(!scan.directories.empty() && scan.directories.front().end == scan.directories.size(),
            "all is below the root");
    for (std::size_t i = 1; i < scan.directories.size(); ++i) {
        const ScannedDirectory& directory = scan.directories[i];
        require(directory.parent < i && directory.end > i &&
                    directory.end <= scan.directories[directory.parent].end,
                "a directory is in one before it");
    }
}

/// A writer that takes all directories for settled says what it has been told.
void checkWriting(const Scan& scan, const EncodedScan& encoded) {
    ScanHead head = scan;
    head.began = std::numeric_limits<std::int64_t>::max();
    ScanWriter writer(head);
    writer.copy(scan, 0, scan.directories.size());
    const EncodedScan again = std::move(writer).finish();
    require(again.directoryCount == encoded.directoryCount, "each directory is written");
    const std::vector<std::byte> record = joinScans({&again, 1});
    const std::vector<Scan> read = decodeScans(record);
    for (std::size_t i = 0; i < scan.directories.size(); ++i)
        require(read.front().directories[i].name == scan.directories[i].name &&
                    read.front().directories[i].stamp == scan.directories[i].stamp &&
                    read.front().directories[i].end == scan.directories[i].end,
                "a directory comes back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto record = std::as_bytes(std::span(data, size));
    succeeds<Error>([&] {
        const std::vector<Scan> scans = decodeScans(record);
        const std::vector<EncodedScan> apart = splitScans(record);
        require(scans.size() == apart.size(), "each scan is taken apart");
        for (std::size_t i = 0; i < scans.size(); ++i) {
            check(scans[i]);
            checkWriting(scans[i], apart[i]);
        }
    });
    return 0;
}
