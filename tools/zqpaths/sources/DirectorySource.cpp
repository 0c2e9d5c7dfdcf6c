#include "tools/zqpaths/sources/DirectorySource.hpp"

#include <filesystem>
#include <system_error>
#include <utility>

#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/output/Messages.hpp"
#include "tools/zqpaths/output/PrintablePath.hpp"
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

DirectorySource::DirectorySource(std::vector<std::string> directories, const WalkOptions& options)
    : directories_(std::move(directories)), options_(options) {
    for (const std::string& directory : directories_) requireDirectory(directory);
}

void DirectorySource::visit(const std::function<void(std::string_view path)>& visitor) {
    const ErrorVisitor onError = [this](std::string_view path, std::string_view reason) {
        ++unreadableCount_;
        tell(printablePath(path).append(": ").append(reason));
    };
    for (const std::string& directory : directories_) {
        ScanWriter scan({directory, nowInNanoseconds(), scanOptionsOf(options_)});
        walkDirectory(
            directory, options_,
            {.onError = onError,
             .onPath = visitor,
             .onDirectory = [&scan](const MetDirectory& met) { scan.add(met.directory); }});
        scans_.push_back(std::move(scan).finish());
    }
}

}  // namespace zqpaths::program
