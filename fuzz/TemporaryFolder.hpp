#pragma once
// A folder in memory for the files of a fuzz target, removed at the end of the process:
//
//     static const fuzzing::TemporaryFolder folder;
//     zqpaths::PathSetWriter writer(folder.pathOf("a.zqp"));
//
// A target that crashes leaves its folder in $TMPDIR, which whoever starts it may remove.
//
// Threads: a folder belongs to one thread at a time.

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <string_view>
#include <system_error>

namespace fuzzing {

class TemporaryFolder {
public:
    TemporaryFolder() : path_(parent() + "/zq-fuzz-XXXXXX") {
        if (::mkdtemp(path_.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;  // what is left in memory breaks nothing
        std::filesystem::remove_all(path_, ignored);
    }

    const std::string& path() const noexcept { return path_; }
    std::string pathOf(std::string_view name) const { return path_ + '/' + std::string(name); }

    /// A file with these bytes. Returns its path.
    std::string write(std::string_view name, std::span<const std::byte> bytes) const {
        std::string file = pathOf(name);
        std::ofstream out(file, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) throw std::system_error(errno, std::generic_category(), file);
        return file;
    }

    void clear() const {
        for (const auto& entry : std::filesystem::directory_iterator(path_))
            std::filesystem::remove_all(entry.path());
    }

private:
    static std::string parent() {
        if (const char* const chosen = std::getenv("TMPDIR")) return chosen;
        return ::access("/dev/shm", W_OK | X_OK) == 0 ? "/dev/shm" : "/tmp";
    }

    std::string path_;
};

}  // namespace fuzzing
