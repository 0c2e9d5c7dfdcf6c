#include "zqpaths/file/SetFile.hpp"

#include <fcntl.h>
#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <new>

namespace zqpaths {
namespace {

/// The first page of a file, or what there is of it.
std::vector<std::byte> firstPageOf(const SystemFile& file) {
    std::vector<std::byte> page(kPageSize);
    page.resize(file.readAt(0, page));
    return page;
}

bool hasAllSuperblocks(const Header& header) noexcept {
    return std::all_of(header.superblocks.begin(), header.superblocks.end(),
                       [](const auto& superblock) { return superblock.has_value(); });
}

/// The header as it is now. A superblock can look damaged while a writer writes it, which is over
/// in no time.
Header headerNow(const SystemFile& file) {
    constexpr int kLooks = 10;
    Header header = decodeHeader(firstPageOf(file));
    for (int look = 1; look < kLooks && !hasAllSuperblocks(header); ++look)
        header = decodeHeader(firstPageOf(file));
    return header;
}

}  // namespace

std::shared_ptr<const SetFile> SetFile::open(const std::string& path) {
    return open(path, path);
}

std::shared_ptr<const SetFile> SetFile::open(const std::string& path, const std::string& name) {
    // A pipe would wait for someone to write to it.
    SystemFile file = SystemFile::open(path, O_RDONLY | O_NONBLOCK, name);
    requireRegularFile(file);
    return std::shared_ptr<const SetFile>(new SetFile(std::move(file)));
}

SetFile::SetFile(SystemFile file) : file_(std::move(file)) {
    // A writer lets the file grow before it changes the header: in this order the header never
    // names more than is mapped.
    const std::vector<std::byte> firstPage = firstPageOf(file_);
    naming([&] { return decodeHeader(firstPage); });  // before other files are mapped
    mapping_ = Mapping(file_);
    state_ = naming([&] { return committedState(firstPage, mapping_.bytes()); });
    pathCount_ = state_.directory.pathCount();
}

SetFile::Mapping::Mapping(const SystemFile& file) {
    const std::uint64_t size = file.size();
    if (size == 0) return;
    void* const begin = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file.number(), 0);
    if (begin == MAP_FAILED && errno == ENOMEM) throw std::bad_alloc();
    if (begin == MAP_FAILED) throw systemError(file.name(), errno);
    bytes_ = {static_cast<const std::byte*>(begin), size};
}

SetFile::Mapping::~Mapping() {
    if (!bytes_.empty()) ::munmap(const_cast<std::byte*>(bytes_.data()), bytes_.size());
}

std::span<const std::byte> SetFile::bytesOf(const SegmentEntry& entry) const noexcept {
    return mapping_.bytes().subspan(entry.offset, entry.size);
}

std::span<const std::byte> SetFile::wholeBytesOf(std::size_t segment) const {
    const SegmentEntry& entry = segments()[segment];
    const std::span<const std::byte> bytes = bytesOf(entry);
    if (sumOf(bytes) != entry.sum)
        throw damage("segment " + std::to_string(segment + 1) + " at byte " +
                     std::to_string(entry.offset) + ": the sum differs");
    return bytes;
}

std::span<const std::byte> SetFile::bytesOf(const std::optional<BlockEntry>& block) const noexcept {
    if (!block) return {};
    return mapping_.bytes().subspan(block->offset, block->size);
}

std::span<const std::byte> SetFile::wholeBytesOf(const char* what,
                                                 const std::optional<BlockEntry>& block) const {
    const std::span<const std::byte> bytes = bytesOf(block);
    if (block && sumOf(bytes) != block->sum)
        throw damage(std::string(what) + " at byte " + std::to_string(block->offset) +
                     ": the sum differs");
    return bytes;
}

void SetFile::requireWhole() const {
    const std::uint64_t now = file_.size();
    naming([&] { requireSize(now, size()); });
}

Error SetFile::damage(const std::string& reason) const {
    return {ErrorKind::kDamaged, path(), reason};
}

void SetFile::verifyHeader(std::vector<Error>& damages) const {
    try {
        const Header header = headerNow(file_);
        for (std::size_t slot = 0; slot < header.superblocks.size(); ++slot)
            if (!header.superblocks[slot])
                damages.push_back(damage("the superblock at byte " +
                                         std::to_string(kSuperblockOffsets[slot]) + " is damaged"));
    } catch (const Error& error) {
        damages.push_back(damage(error.what()));
    }
    if (!state_.isLatest)
        damages.push_back(
            damage("the directory that was written last is damaged; what was added "
                   "with it is not seen"));
}

std::vector<Error> SetFile::verifySums(const WorkWatcher& watch) const {
    requireWhole();
    std::vector<Error> damages;
    const auto collect = [&damages](auto look) {
        try {
            look();
        } catch (const Error& error) {
            damages.push_back(error);
        }
    };
    verifyHeader(damages);
    collect([&] { naming([&] { decodeDirectory(mapping_.bytes(), state_.superblock); }); });
    for (std::size_t i = 0; i < segments().size(); ++i) {
        collect([&] { wholeBytesOf(i); });
        if (watch) watch(WorkStep::kSumming, segments()[i].size);
    }
    collect([&] { wholeBytesOf(kGonePathsText, state_.directory.gone); });
    collect([&] { wholeBytesOf(kScansText, state_.directory.scans); });
    return damages;
}

}  // namespace zqpaths
