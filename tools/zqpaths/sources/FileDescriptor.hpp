#pragma once
// FileDescriptor owns an open file of the system.

#include <unistd.h>

#include <utility>

namespace zqpaths::program {

class FileDescriptor {
public:
    explicit FileDescriptor(int number = kClosed) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : number_(std::exchange(other.number_, kClosed)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() {
        if (isOpen()) ::close(number_);
    }

    bool isOpen() const noexcept { return number_ != kClosed; }
    int number() const noexcept { return number_; }

private:
    static constexpr int kClosed = -1;
    int number_;
};

}  // namespace zqpaths::program
