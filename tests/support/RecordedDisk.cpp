#include "tests/support/RecordedDisk.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace {

struct stat statusOf(int file) {
    struct stat status {};
    if (::fstat(file, &status) != 0) throw std::system_error(errno, std::generic_category());
    return status;
}

ino_t inodeOf(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        throw std::system_error(errno, std::generic_category(), path);
    return status.st_ino;
}

/// The folder that a name is in, as another name; empty for the one that is recorded.
std::string folderOf(const std::string& name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string::npos ? "" : name.substr(0, slash);
}

}  // namespace

RecordedDisk::RecordedDisk(std::string folder) : folder_(std::move(folder)) {
    addFolder("");
    for (const auto& [name, bytes] : contentOf(folder_)) {
        if (!bytes) {
            addFolder(name);
            names_[name] = kFolder;
            continue;
        }
        const ino_t inode = inodeOf(folder_ + "/" + name);
        addFile(name, inode);
        before_.files.push_back({*bytes, bytes->size()});
        sizes_[inode] = bytes->size();
    }
    before_.names = names_;
    watch(this);
}

std::size_t RecordedDisk::unsureCount(std::size_t operations) const noexcept {
    return static_cast<std::size_t>(std::count_if(parts_.begin(), parts_.end(), [&](auto& part) {
        return part.done <= operations && part.certain > operations;
    }));
}

RecordedDisk::Content RecordedDisk::stateAfter(std::size_t operations, const Choice& isKept,
                                               Remains remains) const {
    Disk disk = before_;
    disk.files.resize(fileCount_);
    disk.remains = remains;
    for (const File& file : before_.files)
        if (file.bytes.size() > disk.other.size()) disk.other = file.bytes;
    for (const Part& part : parts_) {
        if (part.done > operations) break;
        if (part.certain <= operations || isKept()) part.apply(disk);
    }
    Content content;
    for (const auto& [name, file] : disk.names) {
        // A folder stands before what is in it; what is in one that is not there cannot be reached.
        const std::string folder = folderOf(name);
        if (!folder.empty() && content.count(folder) == 0) continue;
        content[name] = std::nullopt;
        if (file == kFolder) continue;
        File& read = disk.files[file];
        disk.fill(read.bytes, read.size);
        content[name] = read.bytes;
    }
    return content;
}

/// Lets a file have so many bytes.
void RecordedDisk::Disk::fill(std::string& bytes, std::size_t size) const {
    if (remains == Remains::kOtherFile && bytes.size() < std::min(size, other.size()))
        bytes += other.substr(bytes.size(), size - bytes.size());
    bytes.resize(size, remains == Remains::kOnes ? '\xFF' : '\0');
}

RecordedDisk::Content RecordedDisk::contentOf(const std::string& folder) {
    Content content;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        std::optional<std::string>& bytes = content[entry.path().lexically_relative(folder)];
        if (entry.is_directory()) continue;
        std::ifstream in(entry.path(), std::ios::binary);
        bytes.emplace(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    return content;
}

void RecordedDisk::putContent(const std::string& folder, const Content& content) {
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        std::filesystem::remove_all(entry.path());
    for (const auto& [name, bytes] : content) {
        const auto path = std::filesystem::path(folder) / name;
        if (!bytes)
            std::filesystem::create_directory(path);
        else
            std::ofstream(path, std::ios::binary) << *bytes;
    }
}

// What is recorded.

std::optional<std::string> RecordedDisk::nameOf(const std::string& path) const {
    if (path.compare(0, folder_.size() + 1, folder_ + "/") != 0) return std::nullopt;
    return path.substr(folder_.size() + 1);
}

void RecordedDisk::addFolder(const std::string& name) {
    folderInodes_[name] = inodeOf(name.empty() ? folder_ : folder_ + "/" + name);
}

void RecordedDisk::addFile(const std::string& name, ino_t inode) {
    names_[name] = fileCount_;
    files_[inode] = fileCount_++;
    sizes_[inode] = 0;
}

void RecordedDisk::addPart(ino_t owner, std::function<void(Disk& disk)> apply) {
    parts_.push_back({done_, kNever, owner, std::move(apply)});
}

void RecordedDisk::addName(const std::string& name, std::function<void(Disk& disk)> apply) {
    addPart(folderInodes_.at(folderOf(name)), std::move(apply));
}

void RecordedDisk::madeFile(const char* path, int file) {
    const std::scoped_lock lock(mutex_);
    const auto name = nameOf(path);
    if (!name) return;
    ++done_;
    addFile(*name, statusOf(file).st_ino);
    addName(*name,
            [name = *name, made = names_.at(*name)](Disk& disk) { disk.names[name] = made; });
}

void RecordedDisk::wrote(int file, std::uint64_t offset, std::span<const std::byte> bytes) {
    const std::scoped_lock lock(mutex_);
    const ino_t inode = statusOf(file).st_ino;
    if (files_.count(inode) == 0) return;
    ++done_;
    const std::size_t number = files_.at(inode);
    const auto end = static_cast<std::size_t>(offset) + bytes.size();
    if (end > sizes_.at(inode)) {
        sizes_[inode] = end;
        addPart(inode, [=](Disk& disk) { disk.files[number].size = end; });
    }
    for (auto at = static_cast<std::size_t>(offset); at < end;) {
        const std::size_t size = std::min(end, (at / kSectorSize + 1) * kSectorSize) - at;
        const auto sector = bytes.subspan(at - static_cast<std::size_t>(offset), size);
        const std::string text(reinterpret_cast<const char*>(sector.data()), size);
        addPart(inode, [=](Disk& disk) {
            std::string& all = disk.files[number].bytes;
            if (all.size() < at + text.size()) disk.fill(all, at + text.size());
            all.replace(at, text.size(), text);
        });
        at += size;
    }
}

void RecordedDisk::truncated(int file, std::uint64_t size) {
    const std::scoped_lock lock(mutex_);
    const ino_t inode = statusOf(file).st_ino;
    if (files_.count(inode) == 0) return;
    ++done_;
    sizes_[inode] = static_cast<std::size_t>(size);
    addPart(inode, [number = files_.at(inode), size](Disk& disk) {
        File& cut = disk.files[number];
        cut.size = static_cast<std::size_t>(size);
        cut.bytes.resize(std::min(cut.bytes.size(), cut.size));
    });
}

void RecordedDisk::synced(int fileOrFolder) {
    const std::scoped_lock lock(mutex_);
    const ino_t inode = statusOf(fileOrFolder).st_ino;
    ++done_;
    for (Part& part : parts_)
        if (part.owner == inode && part.certain == kNever) part.certain = done_;
}

void RecordedDisk::giveName(const char* from, const char* to, bool isMoved) {
    const std::scoped_lock lock(mutex_);
    const auto former = nameOf(from);
    const auto name = nameOf(to);
    if (!former || !name) return;
    ++done_;
    const std::size_t file = names_.at(*former);
    if (isMoved) names_.erase(*former);
    names_[*name] = file;
    addName(*name, [former = *former, name = *name, file, isMoved](Disk& disk) {
        const auto there = disk.names.find(former);
        if (isMoved && there != disk.names.end() && there->second == file) disk.names.erase(there);
        disk.names[name] = file;
    });
}

void RecordedDisk::linked(const char* from, const char* to) {
    giveName(from, to, false);
}

void RecordedDisk::renamed(const char* from, const char* to) {
    giveName(from, to, true);
}

void RecordedDisk::unlinked(const char* path) {
    const std::scoped_lock lock(mutex_);
    const auto name = nameOf(path);
    if (!name) return;
    ++done_;
    names_.erase(*name);
    addName(*name, [name = *name](Disk& disk) { disk.names.erase(name); });
}

void RecordedDisk::madeFolder(const char* path) {
    const std::scoped_lock lock(mutex_);
    const auto name = nameOf(path);
    if (!name) return;
    ++done_;
    addFolder(*name);
    names_[*name] = kFolder;
    addName(*name, [name = *name](Disk& disk) { disk.names[name] = kFolder; });
}
