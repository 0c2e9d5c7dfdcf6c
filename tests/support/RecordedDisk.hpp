#pragma once
// RecordedDisk records what is done to a folder, and plays it again as a disk may have it whose
// power fails at any moment:
//
//     RecordedDisk disk(folder);            // what is there is on the device
//     save(folder + "/s.zqp");              // recorded by FailingSystemCalls.cpp
//     disk.stop();
//     disk.stateAfter(3, choice);           // after three operations; choice says what of them is
//     lost
//
// The model. What is done counts for processes at once, for the device from a sync on:
//
//     1 create .z   2 write .z   3 sync .z   4 rename .z s   5 write s   ✗   6 sync the folder
//     └ name         └ sectors,   makes 2      └ names          └ sectors      would make 1, 4
//       unsure         size         certain      unsure           unsure       certain
//
// At ✗ the writing of 2 is certain, and of 1, 4 and 5 any part may be there and any other not, in
// whatever order they were done: each sector of 512 bytes of a write by itself, each size that a
// file was given, each name. Only a renaming is one thing: the name leads to the one file or to the
// other. A sync of a file makes its bytes and its size certain and no name; a sync of a folder
// makes the names in it certain. Bytes below the size of a file that never came to the device are
// zeros, ones, or what another file had there.
//
// Threads: records what all threads do, one at a time, and is played by one.

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/SystemCallWatcher.hpp"

class RecordedDisk final : private SystemCallWatcher {
public:
    static constexpr std::size_t kSectorSize = 512;

    /// What is in a folder and those below: names, each with the bytes of its file, or none if it
    /// is a folder.
    using Content = std::map<std::string, std::optional<std::string>>;

    /// What stands where nothing was written.
    enum class Remains { kZeros, kOnes, kOtherFile };

    /// Says of each thing that is not certain, in the order in which they were done, whether it is
    /// on the device.
    using Choice = std::function<bool()>;

    explicit RecordedDisk(std::string folder);
    ~RecordedDisk() override { stop(); }

    void stop() noexcept { watch(nullptr); }

    /// Operations that were recorded, syncs among them.
    std::size_t operationCount() const noexcept { return done_; }

    /// Things that are not certain after so many operations.
    std::size_t unsureCount(std::size_t operations) const noexcept;

    /// What is on the device after so many operations.
    Content stateAfter(std::size_t operations, const Choice& isKept, Remains remains) const;

    static Content contentOf(const std::string& folder);

    /// Makes the folder hold this and nothing else.
    static void putContent(const std::string& folder, const Content& content);

private:
    struct File {
        std::string bytes;
        std::size_t size = 0;  // which may be smaller or larger
    };

    struct Disk {
        std::vector<File> files;
        std::map<std::string, std::size_t> names;  // of files and kFolder
        Remains remains = Remains::kZeros;
        std::string_view other = {};  // which may remain

        void fill(std::string& bytes, std::size_t size) const;
    };

    /// What is there by itself or is not.
    struct Part {
        std::size_t done;     // the number of its operation
        std::size_t certain;  // that of the sync that made it certain
        ino_t owner;          // the file or folder to sync
        std::function<void(Disk& disk)> apply;
    };

    static constexpr std::size_t kFolder = SIZE_MAX;
    static constexpr std::size_t kNever = SIZE_MAX;

    void madeFile(const char* path, int file) override;
    void wrote(int file, std::uint64_t offset, std::span<const std::byte> bytes) override;
    void truncated(int file, std::uint64_t size) override;
    void synced(int fileOrFolder) override;
    void linked(const char* from, const char* to) override;
    void renamed(const char* from, const char* to) override;
    void unlinked(const char* path) override;
    void madeFolder(const char* path) override;
    void removedFolder(const char* path) override { unlinked(path); }

    std::optional<std::string> nameOf(const std::string& path) const;
    void addFolder(const std::string& name);
    void addFile(const std::string& name, ino_t inode);
    void addPart(ino_t owner, std::function<void(Disk& disk)> apply);
    void addName(const std::string& name, std::function<void(Disk& disk)> apply);
    void giveName(const char* from, const char* to, bool isMoved);

    std::string folder_;
    std::mutex mutex_;
    Disk before_;
    std::vector<Part> parts_;
    std::size_t done_ = 0;
    std::size_t fileCount_ = 0;
    std::map<ino_t, std::size_t> files_;         // that are there, by inode
    std::map<ino_t, std::size_t> sizes_;         // of these
    std::map<std::string, std::size_t> names_;   // of files and kFolder, as processes see them
    std::map<std::string, ino_t> folderInodes_;  // the folder itself has an empty name
};
