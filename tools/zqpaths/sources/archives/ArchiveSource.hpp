#pragma once
// ArchiveSource gives the names of what is in an archive and is no directory, in the order in which
// it stands there and byte for byte. It reads the archive once from front to back, from pipes too,
// and holds none of the names:
//
//     ArchiveSource source("backup.tar.gz", ArchiveFormat::kTar);
//     source.visit([](std::string_view path) { ... });
//
// A tar may be compressed by gzip, bzip2, xz or zstd. What is in a zip is taken from the headers in
// front of the files, not from the directory at its end.

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "tools/zqpaths/sources/PathSource.hpp"

namespace zqpaths::program {

enum class ArchiveFormat { kTar, kZip };

class ArchiveSource final : public PathSource {
public:
    /// An archive in a file, "-" for standard input. Throws Failure kFailed if it cannot be read or
    /// is none of this format.
    ArchiveSource(const std::string& fileName, ArchiveFormat format);
    ~ArchiveSource() override;

    /// The archive in a file, by what is in it; nothing if it is none. Throws Failure kFailed if
    /// the file cannot be read.
    static std::unique_ptr<ArchiveSource> recognize(const std::string& fileName);

    /// Throws Failure kFailed for an archive that is damaged or cut short.
    SourceReport visit(const std::function<void(std::string_view path)>& visitor) override;

private:
    class Reading;

    explicit ArchiveSource(std::unique_ptr<Reading> reading);

    std::unique_ptr<Reading> reading_;
};

}  // namespace zqpaths::program
