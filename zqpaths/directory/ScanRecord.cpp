#include "zqpaths/directory/ScanRecord.hpp"

#include <algorithm>
#include <chrono>
#include <limits>

#include "zqpaths/file/SetFileBytes.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths {
namespace {

using compressedpaths::sixpacks::ByteReader;

// Of the first number of a directory: its state, whether its device follows, and its
// sub-directories.
constexpr std::uint64_t kStateMask = 3;
constexpr std::uint64_t kHasDevice = 4;
constexpr unsigned kCountShift = 3;

/// The times of some file systems are whole seconds, or even ones: what changes a directory within
/// so many nanoseconds of another change may leave its times as they were.
constexpr std::int64_t kSettling = 2'000'000'000;

constexpr unsigned kLeastDirectorySize = 5;  // bytes: a length, and four numbers

/// A difference, or a time, as a number that is small if it is near zero.
std::uint64_t zigzag(std::uint64_t difference) noexcept {
    const std::uint64_t sign = difference >> 63;
    return difference << 1 ^ (~sign + 1);
}

std::uint64_t fromZigzag(std::uint64_t number) noexcept {
    return number >> 1 ^ (~(number & 1) + 1);
}

/// Differences wrap, so that any two numbers have one.
std::uint64_t difference(std::int64_t now, std::int64_t before) noexcept {
    return static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(before);
}

/// Seven bits a byte, the lowest first; the highest bit says that more follow.
void putNumber(std::vector<std::byte>& bytes, std::uint64_t number) {
    for (; number > 0x7F; number >>= 7) bytes.push_back(static_cast<std::byte>(number | 0x80));
    bytes.push_back(static_cast<std::byte>(number));
}

void putText(std::vector<std::byte>& bytes, std::string_view text) {
    putNumber(bytes, text.size());
    const auto characters = std::as_bytes(std::span(text));
    bytes.insert(bytes.end(), characters.begin(), characters.end());
}

std::uint64_t takeNumber(ByteReader& reader) {
    std::uint64_t number = 0;
    for (unsigned shift = 0; shift < 64; shift += 7) {
        const std::uint64_t byte = reader.readInteger(1);
        number |= (byte & 0x7F) << shift;
        if (byte <= 0x7F) return number;
    }
    refuseDamage("the scans hold a number that cannot be");
}

std::string_view takeText(ByteReader& reader) {
    const auto bytes = reader.readBytes(takeNumber(reader));
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool isName(std::string_view name) noexcept {
    constexpr std::string_view kInNoName{"/\0", 2};
    static_assert(kInNoName[0] == kSeparator);
    return !name.empty() && name.find_first_of(kInNoName) == std::string_view::npos &&
           name != "." && name != "..";
}

/// Reads the directories of one scan.
class TreeReader {
public:
    TreeReader(ByteReader& reader, std::vector<ScannedDirectory>& directories)
        : reader_(reader), directories_(directories) {}

    void read() {
        const std::uint64_t count = takeNumber(reader_);
        reader_.requireElements(count, kLeastDirectorySize);
        if (count == 0 || count > std::numeric_limits<std::uint32_t>::max()) refuse();
        directories_.reserve(count);
        while (directories_.size() < count) {
            append(takeDirectory());
            close();
        }
        if (!open_.empty()) refuse();
    }

private:
    struct Open {
        std::uint32_t place;
        std::uint64_t left;          // sub-directories that are still to come
        std::string_view last = {};  // the name of the one that came last
    };

    [[noreturn]] static void refuse() { refuseDamage("the scans hold a tree that cannot be"); }

    ScannedDirectory takeDirectory() {
        ScannedDirectory directory;
        directory.name = takeText(reader_);
        const std::uint64_t head = takeNumber(reader_);
        if (head >> kCountShift > std::numeric_limits<std::uint32_t>::max()) refuse();
        directory.state = static_cast<ScanState>(head & kStateMask);
        directory.subdirectoryCount = static_cast<std::uint32_t>(head >> kCountShift);
        if ((head & kHasDevice) != 0) last_.device = takeNumber(reader_);
        last_.inode += fromZigzag(takeNumber(reader_));
        last_.modified = after(last_.modified);
        last_.changed = after(last_.modified);
        directory.stamp = last_;
        return directory;
    }

    std::int64_t after(std::int64_t before) {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(before) +
                                         fromZigzag(takeNumber(reader_)));
    }

    void append(ScannedDirectory directory) {
        const auto place = static_cast<std::uint32_t>(directories_.size());
        const bool isRoot = place == 0;
        if (isRoot ? !directory.name.empty() : open_.empty() || !isName(directory.name)) refuse();
        if (!isRoot) {
            Open& parent = open_.back();
            if (directory.name <= parent.last) refuse();
            parent.last = directory.name;
            directory.parent = parent.place;
            --parent.left;
        }
        directory.depth = static_cast<std::uint32_t>(open_.size());
        open_.push_back({place, directory.subdirectoryCount});
        directories_.push_back(directory);
    }

    /// Ends the directories that have all that is below them.
    void close() {
        for (; !open_.empty() && open_.back().left == 0; open_.pop_back())
            directories_[open_.back().place].end = static_cast<std::uint32_t>(directories_.size());
    }

    ByteReader& reader_;
    std::vector<ScannedDirectory>& directories_;
    std::vector<Open> open_;  // from the root to the one that was read last
    DirectoryStamp last_;
};

void putHead(std::vector<std::byte>& bytes, const ScanHead& head) {
    putText(bytes, head.root);
    putNumber(bytes, zigzag(static_cast<std::uint64_t>(head.began)));
    putNumber(bytes, head.options.size());
    for (const auto& [key, value] : head.options) {
        putText(bytes, key);
        putText(bytes, value);
    }
}

ScanHead takeHead(ByteReader& reader) {
    ScanHead head;
    head.root = takeText(reader);
    head.began = static_cast<std::int64_t>(fromZigzag(takeNumber(reader)));
    const std::uint64_t optionCount = takeNumber(reader);
    reader.requireElements(optionCount, 2);
    for (std::uint64_t i = 0; i < optionCount; ++i) {
        const std::string_view key = takeText(reader);
        head.options.emplace_back(key, takeText(reader));
    }
    return head;
}

/// Calls `take(reader)` for each scan of a record.
template <class Take>
void forEachScan(std::span<const std::byte> record, Take take) {
    if (record.empty()) return;
    try {
        ByteReader reader = readerOf(record);
        const std::uint64_t count = takeNumber(reader);
        for (std::uint64_t i = 0; i < count; ++i) {
            ByteReader scan(reader.readBytes(takeNumber(reader)));
            take(scan);
        }
        if (!reader.isAtEnd()) refuseDamage("the scans go on after the last");
    } catch (const compressedpaths::sixpacks::PrematureEndException&) {
        refuseDamage("the scans end too early");
    }
}

}  // namespace

ScanWriter::ScanWriter(ScanHead head)
    : scan_{std::move(head), 0, {}}, settledBefore_(scan_.head.began - kSettling) {}

void ScanWriter::add(const ScannedDirectory& directory) {
    const DirectoryStamp& stamp = directory.stamp;
    const bool isSettled = std::max(stamp.modified, stamp.changed) < settledBefore_;
    const ScanState state =
        directory.state == ScanState::kRead && !isSettled ? ScanState::kReadAgain : directory.state;
    const bool hasDevice = stamp.device != lastDevice_;
    std::vector<std::byte>& bytes = scan_.tree;
    putText(bytes, directory.name);
    putNumber(bytes, std::uint64_t{directory.subdirectoryCount} << kCountShift |
                         (hasDevice ? kHasDevice : 0) | static_cast<std::uint64_t>(state));
    if (hasDevice) putNumber(bytes, stamp.device);
    putNumber(bytes, zigzag(stamp.inode - lastInode_));
    putNumber(bytes, zigzag(difference(stamp.modified, lastModified_)));
    putNumber(bytes, zigzag(difference(stamp.changed, stamp.modified)));
    lastDevice_ = stamp.device;
    lastInode_ = stamp.inode;
    lastModified_ = stamp.modified;
    ++scan_.directoryCount;
}

void ScanWriter::copy(const Scan& from, std::size_t first, std::size_t end) {
    for (; first < end; ++first) add(from.directories[first]);
}

std::int64_t nowInNanoseconds() noexcept {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

EncodedScan ScanWriter::finish() && {
    return std::move(scan_);
}

std::vector<std::byte> joinScans(std::span<const EncodedScan> scans) {
    std::vector<std::byte> record;
    putNumber(record, scans.size());
    for (const EncodedScan& scan : scans) {
        std::vector<std::byte> head;
        putHead(head, scan.head);
        putNumber(head, scan.directoryCount);
        putNumber(record, head.size() + scan.tree.size());
        record.insert(record.end(), head.begin(), head.end());
        record.insert(record.end(), scan.tree.begin(), scan.tree.end());
    }
    return record;
}

std::vector<EncodedScan> splitScans(std::span<const std::byte> record) {
    std::vector<EncodedScan> scans;
    forEachScan(record, [&](ByteReader& reader) {
        ScanHead head = takeHead(reader);
        const std::uint64_t count = takeNumber(reader);
        const auto tree = std::as_bytes(reader.readBytes(reader.left()));
        scans.push_back({std::move(head), count, {tree.begin(), tree.end()}});
    });
    return scans;
}

std::vector<Scan> decodeScans(std::span<const std::byte> record) {
    std::vector<Scan> scans;
    forEachScan(record, [&](ByteReader& reader) {
        Scan& scan = scans.emplace_back(Scan{takeHead(reader), {}});
        TreeReader(reader, scan.directories).read();
        if (!reader.isAtEnd()) refuseDamage("the scans hold a tree that cannot be");
    });
    return scans;
}

}  // namespace zqpaths
