#include "tools/zqpaths/sources/DirectorySource.hpp"

#include <filesystem>
#include <system_error>
#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "zqpaths/directory/ScanOptions.hpp"

namespace zqpaths::program {

bool isDirectory(const std::string& path) {
    std::error_code error;
    return std::filesystem::is_directory(path, error);
}

void requireDirectory(const std::string& path) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!error && !std::filesystem::is_directory(status))
        error = std::make_error_code(std::errc::not_a_directory);
    if (error) throw systemFailureAt(path, error.value());
}

DirectorySource::DirectorySource(std::string directory, WalkOptions options, std::string set,
                                 UnreadableVisitor onUnreadable, std::optional<WalkPart> part)
    : directory_(std::move(directory)),
      options_(std::move(options)),
      set_(std::move(set)),
      onUnreadable_(std::move(onUnreadable)),
      part_(std::move(part)) {
    requireDirectory(directory_);
}

SourceReport DirectorySource::visit(const std::function<void(std::string_view path)>& visitor) {
    for (FileIdentity& file : filesOfSet(set_)) options_.notTaken.push_back(std::move(file));
    SourceReport report;
    WalkVisitors visitors{.onError =
                              [&](std::string_view path, std::string_view reason) {
                                  report.addUnreadable(path, reason, onUnreadable_);
                              },
                          .onPath = visitor};
    if (part_) {
        report.leftOut = walkPart(directory_, *part_, options_, visitors);
        return report;
    }
    ScanWriter scan({directory_, nowInNanoseconds(), scanOptionsOf(options_)});
    visitors.onDirectory = [&scan](const MetDirectory& met) { scan.add(met.directory); };
    report.leftOut = walkDirectory(directory_, options_, visitors);
    scans_.push_back(std::move(scan).finish());
    return report;
}

}  // namespace zqpaths::program
