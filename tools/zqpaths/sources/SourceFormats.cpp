#include "tools/zqpaths/sources/SourceFormats.hpp"

#include "tools/zqpaths/sources/archives/ArchiveSource.hpp"
#include "tools/zqpaths/sources/listings/LineReaders.hpp"
#include "tools/zqpaths/sources/listings/ListingSource.hpp"

namespace zqpaths::program {
namespace {

LineReader readerOf(const SourceOptions& options) {
    switch (*options.format) {
        case SourceFormat::kS3:
            return s3Reader();
        case SourceFormat::kS3cmd:
            return s3cmdReader();
        case SourceFormat::kRclone:
            return rcloneReader();
        case SourceFormat::kGsutil:
            return gsutilReader();
        default:
            return jsonLinesReader(options.field);
    }
}

}  // namespace

std::unique_ptr<PathSource> openFormat(const std::string& file, const SourceOptions& options) {
    if (options.format == SourceFormat::kTar)
        return std::make_unique<ArchiveSource>(file, ArchiveFormat::kTar);
    if (options.format == SourceFormat::kZip)
        return std::make_unique<ArchiveSource>(file, ArchiveFormat::kZip);
    return std::make_unique<ListingSource>(file, readerOf(options));
}

}  // namespace zqpaths::program
