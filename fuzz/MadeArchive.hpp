#pragma once
// Archives that the library for archives makes of a list of names, each of a file without content:
//
//     madeArchive({ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_GZIP}, {"a", "b/c"})
//
// Threads: free functions without state.

#include <archive.h>
#include <archive_entry.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace fuzzing {

struct ArchiveKind {
    int format;
    int filter;
};

inline constexpr std::array<ArchiveKind, 8> kArchiveKinds{
    {{ARCHIVE_FORMAT_TAR_USTAR, ARCHIVE_FILTER_NONE},
     {ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_NONE},
     {ARCHIVE_FORMAT_TAR_PAX_INTERCHANGE, ARCHIVE_FILTER_NONE},
     {ARCHIVE_FORMAT_TAR_PAX_RESTRICTED, ARCHIVE_FILTER_GZIP},
     {ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_BZIP2},
     {ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_XZ},
     {ARCHIVE_FORMAT_TAR_GNUTAR, ARCHIVE_FILTER_ZSTD},
     {ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE}}};

/// Throws std::runtime_error for a name that the format cannot hold.
inline std::string madeArchive(const ArchiveKind& kind, const std::vector<std::string>& names) {
    std::string bytes;  // outlives the writer, which may write until its end
    const std::unique_ptr<archive, int (*)(archive*)> writer(archive_write_new(),
                                                             archive_write_free);
    const std::unique_ptr<archive_entry, void (*)(archive_entry*)> entry(archive_entry_new(),
                                                                         archive_entry_free);
    if (!writer || !entry) throw std::bad_alloc();
    const auto require = [&](int status) {
        const char* const reason = archive_error_string(writer.get());
        if (status < ARCHIVE_WARN) throw std::runtime_error(reason == nullptr ? "" : reason);
    };
    require(archive_write_set_format(writer.get(), kind.format));
    require(archive_write_add_filter(writer.get(), kind.filter));
    if (kind.filter == ARCHIVE_FILTER_XZ || kind.filter == ARCHIVE_FILTER_ZSTD)
        require(archive_write_set_filter_option(writer.get(), nullptr, "compression-level", "1"));
    // Zeros after what is compressed would make some of them damaged.
    require(archive_write_set_bytes_in_last_block(writer.get(), 1));
    const auto append = [](archive*, void* to, const void* from, std::size_t size) {
        static_cast<std::string*>(to)->append(static_cast<const char*>(from), size);
        return static_cast<la_ssize_t>(size);
    };
    require(archive_write_open(writer.get(), &bytes, nullptr, append, nullptr));
    for (const std::string& name : names) {
        archive_entry_clear(entry.get());
        archive_entry_set_pathname(entry.get(), name.c_str());
        archive_entry_set_filetype(entry.get(), AE_IFREG);
        archive_entry_set_perm(entry.get(), 0644);
        archive_entry_set_size(entry.get(), 0);
        require(archive_write_header(writer.get(), entry.get()));
    }
    require(archive_write_close(writer.get()));
    return bytes;
}

}  // namespace fuzzing
