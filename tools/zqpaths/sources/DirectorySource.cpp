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
                                 bool isVerbose)
    : directory_(std::move(directory)),
      options_(std::move(options)),
      set_(std::move(set)),
      isVerbose_(isVerbose) {
    requireDirectory(directory_);
}

SourceReport DirectorySource::visit(const std::function<void(std::string_view path)>& visitor) {
    options_.notTaken = filesOfSet(set_);
    SourceReport report;
    ScanWriter scan({directory_, nowInNanoseconds(), scanOptionsOf(options_)});
    report.leftOut = walkDirectory(
        directory_, options_,
        {.onError =
             [&](std::string_view path, std::string_view reason) {
                 report.addUnreadable(path, reason, isVerbose_);
             },
         .onPath = visitor,
         .onDirectory = [&scan](const MetDirectory& met) { scan.add(met.directory); }});
    scans_.push_back(std::move(scan).finish());
    return report;
}

}  // namespace zqpaths::program
