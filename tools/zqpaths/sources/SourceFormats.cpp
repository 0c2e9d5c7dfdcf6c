#include "tools/zqpaths/sources/SourceFormats.hpp"

#include "tools/zqpaths/sources/ListSource.hpp"
#include "tools/zqpaths/sources/archives/ArchiveSource.hpp"
#include "tools/zqpaths/sources/listings/LineReaders.hpp"
#include "tools/zqpaths/sources/listings/ListingSource.hpp"

namespace zqpaths::program {
namespace {

LineReader readerOf(const SourceOptions& options, bool isAfterGap) {
    switch (*options.format) {
        case SourceFormat::kS3:
            return s3Reader();
        case SourceFormat::kS3cmd:
            return s3cmdReader();
        case SourceFormat::kRclone:
            return rcloneReader();
        case SourceFormat::kGsutil:
            return gsutilReader(isAfterGap);
        default:
            return jsonLinesReader(options.field);
    }
}

}  // namespace

bool isOfLines(SourceFormat format) noexcept {
    return format != SourceFormat::kTar && format != SourceFormat::kZip;
}

std::unique_ptr<PathSource> openFormat(const std::string& file, const SourceOptions& options,
                                       ByteRange range) {
    switch (*options.format) {
        case SourceFormat::kTar:
            return std::make_unique<ArchiveSource>(file, ArchiveFormat::kTar);
        case SourceFormat::kZip:
            return std::make_unique<ArchiveSource>(file, ArchiveFormat::kZip);
        case SourceFormat::kList:
            return std::make_unique<ListSource>(file, options.nulDelimited, range);
        default:
            return std::make_unique<ListingSource>(
                file, [&](bool isAfterGap) { return readerOf(options, isAfterGap); }, range);
    }
}

}  // namespace zqpaths::program
