#include "tools/zqpaths/sources/archives/ArchiveSource.hpp"

#include <archive.h>
#include <archive_entry.h>
#include <locale.h>  // NOLINT(modernize-deprecated-headers): of POSIX

#include <cerrno>
#include <cstdint>
#include <exception>
#include <optional>
#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/archives/ArchiveInput.hpp"
#include "tools/zqpaths/sources/archives/ZipHeader.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths::program {
namespace {

struct FreeArchive {
    void operator()(archive* opened) const noexcept { archive_read_free(opened); }
};

/// In the C locale the library finds no characters for a name of a tar and leaves its bytes alone.
class CLocale {
public:
    CLocale() : locale_(::newlocale(LC_ALL_MASK, "C", nullptr)), before_(::uselocale(locale_)) {}
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;
    ~CLocale() {
        ::uselocale(before_);
        ::freelocale(locale_);
    }

private:
    locale_t locale_;
    locale_t before_;
};

constexpr std::int64_t kTarBlockSize = 512;

}  // namespace

/// An archive whose first header has been read.
class ArchiveSource::Reading {
public:
    Reading(const std::string& fileName, ArchiveFormat format)
        : input_(fileName), format_(format), archive_(archive_read_new()) {
        if (!archive_) throw std::bad_alloc();
        if (format == ArchiveFormat::kTar) {
            archive_read_support_filter_gzip(archive_.get());
            archive_read_support_filter_bzip2(archive_.get());
            archive_read_support_filter_xz(archive_.get());
            archive_read_support_filter_zstd(archive_.get());
            archive_read_support_format_tar(archive_.get());
        } else {
            archive_read_support_format_zip_streamable(archive_.get());
        }
        archive_read_set_callback_data(archive_.get(), this);
        archive_read_set_read_callback(archive_.get(), readBlock);
        archive_read_set_skip_callback(archive_.get(), skip);
        const int status = archive_read_open1(archive_.get());
        rethrow();
        isRecognized_ = status == ARCHIVE_OK && next();
    }

    /// Whether it is an archive of the format.
    bool isRecognized() const noexcept { return isRecognized_; }

    void visit(const std::function<void(std::string_view path)>& visitor) {
        while (entry_ != nullptr) {
            const std::string path = name();
            if (!isDirectory(path)) visitor(path);
            skipContent();
            next();
        }
        requireEnd();
    }

    [[noreturn]] void fail(const std::string& reason) const {
        throw failureAt(input_.name(), reason);
    }

private:
    static la_ssize_t readBlock(archive* opened, void* self, const void** block) {
        auto& reading = *static_cast<Reading*>(self);
        try {
            const std::string_view bytes = reading.input_.nextBlock();
            *block = bytes.data();
            return static_cast<la_ssize_t>(bytes.size());
        } catch (...) {
            // Nothing can be thrown through the library.
            reading.thrown_ = std::current_exception();
            archive_set_error(opened, EIO, "cannot be read");
            return ARCHIVE_FATAL;
        }
    }

    static la_int64_t skip(archive* /*opened*/, void* self, la_int64_t count) {
        auto& input = static_cast<Reading*>(self)->input_;
        return static_cast<la_int64_t>(input.skip(static_cast<std::uint64_t>(count)));
    }

    void rethrow() {
        if (thrown_) std::rethrow_exception(std::exchange(thrown_, nullptr));
    }

    /// Reads the next header; false if the first one is not of the format. At the end there is no
    /// entry.
    bool next() {
        const bool isFirst = !hasBegun_;
        hasBegun_ = true;
        const CLocale locale;
        contentEnd_ = archive_filter_bytes(archive_.get(), 0);
        const int status = archive_read_next_header(archive_.get(), &entry_);
        rethrow();
        // A warning is one about a name, which is looked at where it is given.
        if (status == ARCHIVE_OK || status == ARCHIVE_WARN) return true;
        entry_ = nullptr;
        if (status == ARCHIVE_EOF) return true;
        if (isFirst && archive_format(archive_.get()) == 0) return false;
        failOfLibrary();
    }

    void skipContent() {
        const int status = archive_read_data_skip(archive_.get());
        rethrow();
        if (status != ARCHIVE_OK && status != ARCHIVE_WARN) failOfLibrary();
    }

    [[noreturn]] void failOfLibrary() const {
        const char* const reason = archive_error_string(archive_.get());
        fail(reason == nullptr ? "is cut short"
                               : "is damaged or cut short: " + std::string(reason));
    }

    std::string name() const {
        std::optional<std::string> name;
        if (format_ == ArchiveFormat::kZip) {
            name = zipName();
        } else if (const char* const bytes = archive_entry_pathname(entry_)) {
            name = bytes;
        }
        if (!name || name->empty()) fail("is damaged: an entry has no name");
        if (name->find('\0') != std::string::npos) fail("is damaged: a name has a NUL");
        return *name;
    }

    /// What ends with a separator in a zip is one; the library says so of names that end with a
    /// backslash, too.
    bool isDirectory(const std::string& path) const {
        if (format_ == ArchiveFormat::kZip) return path.ends_with(kSeparator);
        return archive_entry_filetype(entry_) == AE_IFDIR;
    }

    /// The name in the header that the library has just read.
    std::optional<std::string> zipName() const {
        const auto end = static_cast<std::uint64_t>(archive_filter_bytes(archive_.get(), 0));
        const auto begin = static_cast<std::uint64_t>(archive_read_header_position(archive_.get()));
        return nameInZipHeader(input_.bytesBetween(begin, end));
    }

    /// Throws Failure kFailed if what ends an archive is not there.
    void requireEnd() {
        const bool isWhole = format_ == ArchiveFormat::kTar ? hasEndOfTar() : hasDirectoryOfZip();
        if (!isWhole) fail("is cut short: its end is missing");
    }

    /// A tar ends with two blocks of zeros, the library with the last entry if there are none.
    bool hasEndOfTar() const {
        return archive_filter_bytes(archive_.get(), 0) - contentEnd_ >= kTarBlockSize;
    }

    bool hasDirectoryOfZip() {
        while (!input_.nextBlock().empty()) continue;
        return hasEndOfZip(input_.bytesBetween(0, input_.position()));
    }

    ArchiveInput input_;
    ArchiveFormat format_;
    std::exception_ptr thrown_;  // by the input, in the midst of the library
    std::unique_ptr<archive, FreeArchive> archive_;
    archive_entry* entry_ = nullptr;
    bool hasBegun_ = false;
    bool isRecognized_ = false;
    la_int64_t contentEnd_ = 0;  // where the content of the last entry ends
};

ArchiveSource::ArchiveSource(std::unique_ptr<Reading> reading) : reading_(std::move(reading)) {}

ArchiveSource::ArchiveSource(const std::string& fileName, ArchiveFormat format)
    : ArchiveSource(std::make_unique<Reading>(fileName, format)) {
    if (!reading_->isRecognized())
        reading_->fail(format == ArchiveFormat::kTar ? "is no tar" : "is no zip");
}

ArchiveSource::~ArchiveSource() = default;

std::unique_ptr<ArchiveSource> ArchiveSource::recognize(const std::string& fileName) {
    for (const ArchiveFormat format : {ArchiveFormat::kTar, ArchiveFormat::kZip}) {
        auto reading = std::make_unique<Reading>(fileName, format);
        if (reading->isRecognized())
            return std::unique_ptr<ArchiveSource>(new ArchiveSource(std::move(reading)));
    }
    return nullptr;
}

SourceReport ArchiveSource::visit(const std::function<void(std::string_view path)>& visitor) {
    reading_->visit(visitor);
    return {};
}

}  // namespace zqpaths::program
