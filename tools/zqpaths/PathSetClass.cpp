#include "tools/zqpaths/PathSetClass.hpp"

#include <filesystem>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

/// Where the library is, seen from the program: installed, and where both are built.
constexpr const char* kPlaces[] = {"../lib/libzqcompressedpaths.so",
                                   "../../binding/libzqcompressedpaths.so"};

std::string findLibrary() {
    const std::filesystem::path folder =
        std::filesystem::read_symlink("/proc/self/exe").parent_path();
    for (const char* place : kPlaces)
        if (std::filesystem::exists(folder / place)) return (folder / place).lexically_normal();
    throw Failure(ExitStatus::kFailed,
                  "the library is missing: " + (folder / kPlaces[0]).lexically_normal().string());
}

}  // namespace

korvex::Session& pathSetSession() {
    static korvex::Session session;
    static const bool isLoaded = (session.loadLibrary(findLibrary()), true);
    static_cast<void>(isLoaded);
    return session;
}

}  // namespace zqpaths
