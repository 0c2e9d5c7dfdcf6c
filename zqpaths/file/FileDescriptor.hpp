#pragma once
// FileDescriptor owns an open file of the system, and closes it:
//
//     const FileDescriptor directory(::open("/usr", O_PATH | O_DIRECTORY | O_CLOEXEC));
//     if (!directory.isOpen()) return errno;
//
// Threads: belongs to one thread at a time; others may use the number meanwhile.

#include <unistd.h>

#include <utility>

namespace zqpaths {

class FileDescriptor {
public:
    /// Of no open file.
    FileDescriptor() noexcept = default;

    /// Takes over what open(2) has given, -1 being no open file.
    explicit FileDescriptor(int number) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : number_(std::exchange(other.number_, kClosed)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() { close(); }

    bool isOpen() const noexcept { return number_ != kClosed; }
    int number() const noexcept { return number_; }

    void close() noexcept {
        if (isOpen()) ::close(std::exchange(number_, kClosed));
    }

private:
    static constexpr int kClosed = -1;

    int number_ = kClosed;
};

}  // namespace zqpaths
