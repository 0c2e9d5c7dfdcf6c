#pragma once
// FileSizeLimit lets no file of this process grow past a size, for as long as it lives:
//
//     const test_support::FileSizeLimit limit(4096);
//     writer.commit();  // throws Error kSystem
//
// Threads: it is for the whole process.

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

namespace test_support {

class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{size, before_.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        handler_ = std::signal(SIGXFSZ, SIG_IGN);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        static_cast<void>(std::signal(SIGXFSZ, handler_));
    }

private:
    rlimit before_{};
    void (*handler_)(int) = SIG_DFL;
};

}  // namespace test_support
