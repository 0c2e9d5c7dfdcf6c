#pragma once
// FileBeside is a file that is written beside the one that it is to become, and is gone if it does
// not:
//
//     const DeferredSignals signals;  // one that comes lets the destructor do its work
//     FileBeside file("list.txt");
//     write(file.descriptor(), ...);
//     file.sync();
//     file.takePlace(false);
//     file.syncPlace();
//
// Threads: an object belongs to one thread at a time; several may make the same file, the last one
// stays.

#include <cstddef>
#include <string>

#include "zqpaths/file/FileDescriptor.hpp"

namespace zqpaths::program {

class FileBeside {
public:
    /// `number` tells those apart that one process makes at a time. Throws Failure kFailed or
    /// Error, as all calls do.
    explicit FileBeside(std::string path, std::size_t number = 0);
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;
    ~FileBeside();

    const std::string& path() const noexcept { return path_; }
    int descriptor() const noexcept { return file_.number(); }

    /// Puts what was written on the device.
    void sync();

    /// Gives the file its path, in the place of one that is there if it may replace it.
    void takePlace(bool mayReplace);

    /// Puts the path of a file that has taken its place on the device.
    void syncPlace() const;

    /// Removes a file that has taken its place and replaced none.
    void takeBack() noexcept;

private:
    std::string path_;
    std::string temporaryPath_;
    FileDescriptor file_;
};

/// Whether the path leads to something that is no regular file, a pipe or a device.
bool isSpecialFile(const std::string& path);

/// Throws Failure kFailed if there is a file that writing would replace; pipes and devices stay.
void requireFree(const std::string& path);

}  // namespace zqpaths::program
