#include "zqpaths/update/SetScans.hpp"

#include "zqpaths/set/OpenedSet.hpp"

namespace zqpaths {
namespace {

/// What `read(record)` gives of the record of a set, whose sum is looked at first.
template <class Read>
auto readRecord(const PathSet& set, Read read) {
    const SetFile& file = openedSetOf(set).file();
    file.requireWhole();
    const auto record = file.wholeBytesOf(kScansText, file.state().directory.scans);
    return file.naming([&] { return read(record); });
}

}  // namespace

std::vector<Scan> scansOf(const PathSet& set) {
    return readRecord(set, decodeScans);
}

std::vector<EncodedScan> encodedScansOf(const PathSet& set) {
    return readRecord(set, splitScans);
}

}  // namespace zqpaths
