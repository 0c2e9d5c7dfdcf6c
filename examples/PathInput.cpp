#include "examples/PathInput.hpp"

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string_view>
#include <system_error>

#include "tools/zqpaths/DirectoryWalk.hpp"
#include "tools/zqpaths/PrintablePath.hpp"

namespace examples {
namespace {

[[noreturn]] void refuse(const std::string& place, std::string_view reason) {
    throw InputError(zqpaths::printablePath(place).append(": ").append(reason));
}

PathInput readDirectory(const std::string& directory) {
    PathInput input;
    zqpaths::walkDirectory(
        directory, {}, [&input](std::string_view path) { input.paths.append(path); },
        [&input](std::string_view path, std::string_view reason) {
            ++input.unreadableCount;
            std::cerr << zqpaths::printablePath(path) << ": " << reason << '\n';
        });
    if (input.paths.size() == 0) refuse(directory, "no paths in this directory");
    return input;
}

PathInput readList(const std::string& fileName) {
    errno = 0;
    std::ifstream file(fileName, std::ios::binary);
    if (!file) refuse(fileName, std::generic_category().message(errno));

    PathInput input;
    const auto refuseLine = [&](std::string_view reason) {
        refuse(fileName + ':' + std::to_string(input.paths.size() + 1), reason);
    };
    for (std::string line; std::getline(file, line);) {
        if (line.empty()) refuseLine("an empty line is no path");
        if (line.find('\0') != std::string::npos) refuseLine("a path cannot hold a NUL byte");
        input.paths.append(line);
    }
    if (file.bad()) refuse(fileName, std::generic_category().message(errno));
    if (input.paths.size() == 0) refuse(fileName, "no paths in this list");
    return input;
}

}  // namespace

PathInput readPaths(const std::string& source) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(source, error);
    if (error) refuse(source, error.message());
    return std::filesystem::is_directory(status) ? readDirectory(source) : readList(source);
}

}  // namespace examples
