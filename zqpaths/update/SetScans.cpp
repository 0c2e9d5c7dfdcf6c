#include "zqpaths/update/SetScans.hpp"

#include <cstddef>
#include <span>

#include "zqpaths/set/OpenedSet.hpp"

namespace zqpaths {
namespace {

/// What `read(record)` gives of the record of a set, whose sum is looked at first; an empty one for
/// a set of sets, which has none.
template <class Read>
auto readRecord(const PathSet& set, Read read) {
    const SetFile* const file = openedSetOf(set).onlyFile();
    if (file == nullptr) return read(std::span<const std::byte>());
    file->requireWhole();
    const auto record = file->wholeBytesOf(kScansText, file->state().directory.scans);
    return file->naming([&] { return read(record); });
}

}  // namespace

std::vector<Scan> scansOf(const PathSet& set) {
    return readRecord(set, decodeScans);
}

std::vector<EncodedScan> encodedScansOf(const PathSet& set) {
    return readRecord(set, splitScans);
}

}  // namespace zqpaths
