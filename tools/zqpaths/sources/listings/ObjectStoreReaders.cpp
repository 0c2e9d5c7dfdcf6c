// What tools for object stores print.

#include <cstddef>

#include "tools/zqpaths/sources/listings/LineColumns.hpp"
#include "tools/zqpaths/sources/listings/LineReaders.hpp"
#include "zqpaths/text/PathComponents.hpp"

namespace zqpaths::program {
namespace {

constexpr std::size_t kSizeWidthOfS3 = 10;
constexpr std::size_t kSizeWidthOfRclone = 9;
constexpr std::size_t kSizeWidthOfGsutil = 10;

using Path = std::optional<std::string_view>;

/// The name of an object, nothing for a marker of a folder.
Path objectName(std::string_view name, SizeColumn size) {
    const bool isMarker = size == SizeColumn::kZero && name.ends_with(kSeparator);
    return isMarker ? std::nullopt : Path(name);
}

Path readS3(std::string_view line) {
    LineColumns columns(line);
    if (columns.takeShape("dddd-dd-dd dd:dd:dd ")) {
        const SizeColumn size = columns.takeSize(kSizeWidthOfS3);
        if (size != SizeColumn::kNone && columns.take(" ") && !columns.rest().empty())
            return objectName(columns.rest(), size);
    } else {
        // The sums of --summarize, after an empty line.
        columns.takeSpaces();
        if (columns.rest().empty() || columns.take("Total Objects: ") ||
            columns.take("Total Size: "))
            return std::nullopt;
    }
    throw UnexpectedLine{"DATE TIME SIZE KEY, as 'aws s3 ls --recursive' prints it"};
}

/// Takes what stands before the name with `-l`: a sum, which may be missing, and a storage class.
bool takeUpTo(LineColumns& columns, std::string_view scheme) {
    const std::size_t begin = columns.rest().find(scheme);
    if (begin == std::string_view::npos) return false;
    const std::string_view between = columns.rest().substr(0, begin);
    constexpr std::string_view kAllowed =
        " -_0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    return between.find_first_not_of(kAllowed) == std::string_view::npos && columns.take(between);
}

Path readS3cmd(std::string_view line) {
    LineColumns columns(line);
    if (columns.takeShape("dddd-dd-dd dd:dd ")) {
        const SizeColumn size = columns.takeSize(0);
        if (size != SizeColumn::kNone && columns.take("  ") && takeUpTo(columns, "s3://"))
            return objectName(columns.rest(), size);
    } else {
        columns.takeSpaces();
        if (columns.rest().empty() || columns.take("DIR ")) return std::nullopt;
    }
    throw UnexpectedLine{"DATE TIME SIZE s3://BUCKET/KEY, as 's3cmd ls --recursive' prints it"};
}

Path readRclone(std::string_view line) {
    LineColumns columns(line);
    const SizeColumn size = columns.takeSize(kSizeWidthOfRclone);
    if (size == SizeColumn::kNone || !columns.take(" ") || columns.rest().empty())
        throw UnexpectedLine{"SIZE PATH, as 'rclone ls' prints it"};
    return objectName(columns.rest(), size);
}

/// Headings of folders stand at the very front and after empty lines; elsewhere what looks like one
/// is an object whose name is a colon.
class GsutilReader {
public:
    explicit GsutilReader(bool isAfterGap) : isAfterGap_(isAfterGap) {}

    Path operator()(std::string_view line) {
        const bool mayBeHeading = isAfterGap_;
        isAfterGap_ = line.empty();
        if (line.empty()) return std::nullopt;
        LineColumns columns(line);
        if (columns.take("TOTAL: ")) return std::nullopt;
        if (line.starts_with(kScheme)) {
            const bool isHeading = mayBeHeading && line.ends_with("/:");
            if (isHeading || line.ends_with(kSeparator)) return std::nullopt;
            return line;
        }
        return readLong(columns);
    }

private:
    static constexpr std::string_view kScheme = "gs://";

    static Path readLong(LineColumns columns) {
        LineColumns folder = columns;
        folder.takeSpaces();
        if (folder.rest().starts_with(kScheme) && folder.rest().ends_with(kSeparator))
            return std::nullopt;
        const SizeColumn size = columns.takeSize(kSizeWidthOfGsutil);
        const bool fits = size != SizeColumn::kNone &&
                          columns.takeShape("  dddd-dd-ddTdd:dd:ddZ  ") &&
                          columns.rest().starts_with(kScheme);
        if (!fits)
            throw UnexpectedLine{
                "gs://BUCKET/NAME or SIZE DATE gs://BUCKET/NAME, as 'gsutil ls -r' or 'gsutil ls "
                "-lr' prints it"};
        return objectName(columns.rest(), size);
    }

    bool isAfterGap_;
};

}  // namespace

LineReader s3Reader() {
    return readS3;
}

LineReader s3cmdReader() {
    return readS3cmd;
}

LineReader rcloneReader() {
    return readRclone;
}

LineReader gsutilReader(bool isAfterGap) {
    return GsutilReader(isAfterGap);
}

}  // namespace zqpaths::program
