#include "tests/zqpaths/hostile/ImageParts.hpp"

#include <cstring>
#include <numeric>
#include <sstream>

#include "compressedpaths/store/FlatArray.hpp"
#include "compressedpaths/store/StoredName.hpp"
#include "tests/support/ImageSums.hpp"
#include "tests/support/PathSets.hpp"

namespace hostile {

namespace image = compressedpaths::image;

std::string varint(std::uint64_t value) {
    std::array<std::uint8_t, compressedpaths::kMaxVarintSize> bytes;
    return {bytes.data(), compressedpaths::writeVarint(value, bytes.data())};
}

std::string imageOf(const compressedpaths::HuffmanPathTree& set) {
    std::ostringstream out;
    set.writeImage(out);
    return out.str();
}

ImageParts::ImageParts() : isHandMade_(true) {
    makeCode(code_);
    const ImageParts whole(code_);
    header_ = whole.header_;
    parts_ = whole.parts_;
    folders_.push_back({kRoot, kNone, kNone, kNone});
}

ImageParts::ImageParts(const compressedpaths::HuffmanPathTree& set) {
    const std::string bytes = imageOf(set);
    std::memcpy(&header_, bytes.data(), sizeof header_);
    for (std::size_t part = 0; part < parts_.size(); ++part)
        parts_.at(part) =
            bytes.substr(header_.parts.at(part).offset, header_.parts.at(part).byteSize);
}

std::string ImageParts::storedName(std::string_view name) const {
    compressedpaths::FlatArray<std::uint8_t> stored;
    code_.codeTables().appendCode(std::u16string(name.begin(), name.end()), stored);
    return {stored.data(), stored.end()};
}

std::uint32_t ImageParts::addNames(std::string_view bytes) {
    std::string& names = (*this)[Part::kNames];
    names += bytes;
    return static_cast<std::uint32_t>(names.size() - bytes.size());
}

Link ImageParts::addRun(FolderNumber folder, std::uint64_t position,
                        const std::vector<std::string>& names, unsigned flags) {
    namespace form = compressedpaths::arena;
    const auto link = static_cast<Link>((*this)[Part::kNames].size());
    addNames({reinterpret_cast<const char*>(&link), sizeof link});
    addNames(varint(folder));
    addNames(varint(position));
    if (names.size() > form::kMaxPlainRun) flags |= form::kWideSamples;
    addNames(varint(std::uint64_t{names.size()} << form::kCountShift | flags));
    std::uint32_t offset = 0;
    for (std::size_t i = 0; names.size() > form::kMaxPlainRun && i < names.size(); ++i) {
        if (i > 0 && i % form::kSampleDistance == 0)
            addNames({reinterpret_cast<const char*>(&offset), sizeof offset});
        offset += static_cast<std::uint32_t>(names[i].size());
    }
    std::string all;
    for (const std::string& name : names) all += name;
    addNames(all);
    return link;
}

FolderNumber ImageParts::addFolder(FolderNumber parent, std::uint64_t position,
                                   std::string_view name) {
    return addFolderNamedAt(parent, addNames(varint(position) + std::string(name)));
}

FolderNumber ImageParts::addFolderNamedAt(FolderNumber parent, std::uint32_t name) {
    folders_.push_back({parent, name, kNone, kNone});
    return static_cast<FolderNumber>(folders_.size() - 1);
}

void ImageParts::setNext(Link item, Link next) {
    if ((item & kFolderLink) != 0)
        folders_.at(item & ~kFolderLink).next = next;
    else
        std::memcpy((*this)[Part::kNames].data() + item, &next, sizeof next);
}

void ImageParts::closeRing(FolderNumber folder, const std::vector<Link>& items) {
    folders_.at(folder).last = items.back();
    setNext(items.back(), items.front());
    for (std::size_t i = 1; i < items.size(); ++i) setNext(items[i - 1], items[i]);
}

void ImageParts::addEntry(std::uint64_t pathCount, Link run, std::uint32_t skip) {
    entries_.reserveForOne();
    entries_.append({pathCount, {.existed = true, .run = run, .skip = skip}});
}

void ImageParts::addEntryIn(std::uint64_t pathCount, FolderNumber folder, std::uint64_t position) {
    entries_.reserveForOne();
    entries_.append({pathCount, {.existed = true, .folder = folder, .firstChild = position}});
}

void ImageParts::order() {
    std::vector<std::uint32_t> numbers(folders_.size() - 1);
    std::iota(numbers.begin(), numbers.end(), 1U);
    put(Part::kFoldersByName, std::span<const std::uint32_t>(numbers));
    numbers.resize(entries_.size());
    std::iota(numbers.begin(), numbers.end(), 0U);
    put(Part::kEntriesByFolder, std::span<const std::uint32_t>(numbers));
    header_.pathCount = header_.entryPathCount = entries_.pathCount();
    header_.entryCount = entries_.size();
    header_.lastRun = entries_.lastRun();
    put(Part::kEntryBytes, entries_.bytes().values());
    put(Part::kEntryBlocks, entries_.blocks().values());
}

std::string ImageParts::bytes() {
    if (isHandMade_)
        put(Part::kFolders, std::span<const compressedpaths::PathArena::Folder>(folders_));
    std::string bytes = laidOut();
    compressedpaths::putImageSumsRight(std::as_writable_bytes(std::span(bytes)));
    return bytes;
}

/// The parts where a writer puts them, the sums still to be made.
std::string ImageParts::laidOut() {
    const auto aligned = [](std::size_t size) {
        return (size + image::kAlignment - 1) / image::kAlignment * image::kAlignment;
    };
    std::string bytes(sizeof header_, '\0');
    for (std::size_t part = 0; part < parts_.size(); ++part) {
        bytes.resize(aligned(bytes.size()));
        if (part + 1 == parts_.size())
            parts_.back().resize((bytes.size() + image::kSummedSize - 1) / image::kSummedSize *
                                 sizeof(std::uint64_t));
        header_.parts.at(part) = {bytes.size(), parts_.at(part).size()};
        bytes += parts_.at(part);
    }
    bytes.resize(aligned(bytes.size()) + image::kZeroBytes);
    header_.byteSize = bytes.size();
    std::memcpy(bytes.data(), &header_, sizeof header_);
    return bytes;
}

}  // namespace hostile
