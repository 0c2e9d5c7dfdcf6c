// What superblocks, directories, gone paths and scans can say.

#include <cstring>

#include "tests/support/SetFileSums.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/zqpaths/hostile/HostileFiles.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/directory/ScanRecord.hpp"
#include "zqpaths/file/SetFileLayout.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace hostile {
namespace {

using namespace zqpaths;

constexpr std::uint64_t kHuge = std::uint64_t{1} << 40;
constexpr std::uint64_t kMostInAll = std::uint64_t{1} << 62;

/// What stands in a file before its directory, and that, to be changed.
struct OpenedUp {
    std::vector<std::byte> front;
    Directory directory;

    std::uint64_t end() const noexcept { return alignedUp(front.size(), 8); }

    /// Appends a block and has the directory name it.
    BlockEntry addBlock(std::span<const std::byte> bytes, std::uint64_t count) {
        front.resize(end());
        front.insert(front.end(), bytes.begin(), bytes.end());
        return {front.size() - bytes.size(), bytes.size(), count, sumOf(bytes)};
    }
};

/// A set of a thousand honest paths.
OpenedUp honest(const std::string& file) {
    {
        PathSetWriter writer(file, PathSetWriter::Mode::kReplace);
        for (int i = 0; i < 1000; ++i) writer.add("folder/file" + std::to_string(i));
        writer.commit();
    }
    const auto opened = SetFile::open(file);
    const std::string content = contentOf(file);
    const auto bytes = bytesOf(content);
    const Directory& directory = opened->state().directory;
    const std::size_t size = directory.segments.front().offset + directory.segments.front().size;
    return {{bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)}, directory};
}

/// Writes what stands before a directory, the directory with these bytes, and what names it.
void write(const std::string& file, const OpenedUp& opened,
           const std::vector<std::byte>& directory) {
    Superblock superblock{1, opened.end(), directory.size(), sumOf(directory), 0};
    superblock.end = superblock.directoryOffset + superblock.directorySize + kSuperblockSize;
    std::vector<std::byte> bytes = opened.front;
    bytes.resize(superblock.directoryOffset);
    bytes.insert(bytes.end(), directory.begin(), directory.end());
    const auto closing = encodeSuperblock(superblock);
    bytes.insert(bytes.end(), closing.begin(), closing.end());
    Superblock later = superblock;
    ++later.sequence;
    const auto page = encodeHeader({0, {superblock, later}});
    std::ranges::copy(page, bytes.begin());
    writeContent(file, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

void write(const std::string& file, const OpenedUp& opened) {
    write(file, opened, encodeDirectory(opened.directory));
}

/// A file whose directory says of its segment what `change` makes of it.
template <class Change>
HostileFile ofSegment(const char* name, const char* attacks, Change change) {
    return {name, attacks, Kind::kImage, [change](const std::string& file) {
                OpenedUp opened = honest(file);
                change(opened.directory.segments.front());
                write(file, opened);
            }};
}

template <class Change>
HostileFile ofDirectory(const char* name, const char* attacks, Change change) {
    return {name, attacks, Kind::kImage, [change](const std::string& file) {
                OpenedUp opened = honest(file);
                change(opened);
                write(file, opened);
            }};
}

std::vector<std::byte> goneRuns(std::uint64_t count, std::uint64_t distance) {
    std::vector<std::byte> bytes(count * kGoneRunSize);
    ByteWriter writer(bytes);
    for (std::uint64_t i = 0; i < count; ++i) {
        writer.integer(1 + i * distance, 8);
        writer.integer(i, 8);
    }
    return bytes;
}

void addHostileSegments(Files& files) {
    files.push_back(ofSegment("a segment of 2^61 paths", "counts", [](SegmentEntry& segment) {
        segment.pathCount = kMostInAll / 2;
        segment.textSize = kMostInAll;
    }));
    files.push_back(ofSegment("a segment of one path more", "counts",
                              [](SegmentEntry& segment) { ++segment.pathCount; }));
    files.push_back(ofSegment("a segment past the end", "lengths", [](SegmentEntry& segment) {
        segment.size = std::uint64_t{1} << 63;
    }));
    files.push_back(
        ofSegment("text that is far more than stated", "counts",
                  [](SegmentEntry& segment) { segment.textSize = 2 * segment.pathCount; }));
    files.push_back(ofDirectory("a segment named a thousand times", "overlaps", [](auto& opened) {
        opened.directory.segments.assign(1000, opened.directory.segments.front());
    }));
    files.push_back(
        ofDirectory("a segment that the directory lies in", "overlaps", [](auto& opened) {
            SegmentEntry& segment = opened.directory.segments.front();
            segment.size = opened.end() - segment.offset + 8;
        }));
    files.push_back(ofDirectory("60,000 segments without paths", "counts", [](auto& opened) {
        opened.directory.segments.resize(60'000, {SegmentForm::kImage, kPageSize, 1, 0, 0, 0, 0});
    }));
}

void addHostileSections(Files& files) {
    files.push_back(ofDirectory("60,000 sections of no bytes", "counts", [](auto& opened) {
        opened.directory.unknown.resize(60'000, {0x21212121, 0, {}});
    }));
    files.back().isWhole = true;
    files.push_back(
        {"a section of 2^64 bytes", "lengths", Kind::kImage, [](const std::string& file) {
             const OpenedUp opened = honest(file);
             std::vector<std::byte> directory = encodeDirectory(opened.directory);
             std::memset(directory.data() + 8, 0xFF, 8);
             write(file, opened, directory);
         }});
    files.push_back(
        {"a directory of 2^63 bytes", "lengths", Kind::kImage, [](const std::string& file) {
             write(file, honest(file));
             std::string bytes = contentOf(file);
             for (const std::size_t at : kSuperblockOffsets) bytes.at(at + 16 + 7) = '\x80';
             putSumsRight(std::as_writable_bytes(std::span(bytes)));
             writeContent(file, bytes);
         }});
}

void addHostileBlocks(Files& files) {
    files.push_back(ofDirectory("2^40 gone paths in one run", "counts", [](auto& opened) {
        opened.directory.gone = opened.addBlock(goneRuns(1, 1), kHuge);
    }));
    files.push_back(ofDirectory("gone paths in runs that touch", "overlaps", [](auto& opened) {
        opened.directory.gone = opened.addBlock(goneRuns(900, 1), 900);
    }));
    files.push_back(
        ofDirectory("60,000 runs of gone paths past the end", "counts", [](auto& opened) {
            opened.directory.segments.front().pathCount = 60'000;
            opened.directory.gone = opened.addBlock(goneRuns(60'000, kHuge), 60'000);
        }));
    files.push_back(ofDirectory("2^60 directories of a scan", "counts", [](auto& opened) {
        const std::string record("\x01\x7F\x01/\x00\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x0F", 15);
        opened.directory.scans = opened.addBlock(bytesOf(record), kHuge << 20);
    }));
    files.push_back(ofDirectory("100,000 levels of a scan", "depth", [](auto& opened) {
        ScanWriter scan({"/", 1, {}});
        for (std::uint64_t i = 0; i < 100'000; ++i)
            scan.add({.name = i == 0 ? "" : "d", .subdirectoryCount = i + 1 < 100'000 ? 1U : 0U});
        const EncodedScan encoded = std::move(scan).finish();
        opened.directory.scans = opened.addBlock(joinScans({&encoded, 1}), encoded.directoryCount);
    }));
    files.back().isWhole = true;
}

}  // namespace

void addHostileDirectories(Files& files) {
    addHostileSegments(files);
    addHostileSections(files);
    addHostileBlocks(files);
}

}  // namespace hostile
