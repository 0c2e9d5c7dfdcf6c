// Sets of sets: rows that name the same, files that are not there, JSON that is none.

#include <filesystem>

#include "tests/support/SetFiles.hpp"
#include "tests/zqpaths/hostile/HostileFiles.hpp"
#include "zqpaths/PathSet.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/manifest/SetManifest.hpp"

namespace hostile {
namespace {

using namespace zqpaths;

constexpr std::size_t kRows = 3'000;

/// A set of few paths beside a file, as a manifest names it.
ManifestFile setBeside(const std::string& file) {
    const std::string set = file + ".part";
    PathSetWriter writer(set, PathSetWriter::Mode::kReplace);
    for (int i = 0; i < 10; ++i) writer.add("folder/" + std::to_string(i));
    writer.commit();
    return {std::filesystem::path(set).filename(), PathSet::open(set).fingerprint()};
}

template <class Make>
HostileFile ofManifest(const char* name, const char* attacks, Make make) {
    return {name, attacks, Kind::kSetOfSets, [make](const std::string& file) {
                SetManifest manifest{{setBeside(file)}, {}};
                make(manifest);
                writeContent(file, encodeManifest(manifest));
            }};
}

}  // namespace

void addHostileManifests(Files& files) {
    files.push_back(ofManifest("3,000 rows of one segment", "overlaps", [](auto& manifest) {
        manifest.rows.assign(kRows, {0, 0, 1, 10, 0});
    }));
    files.back().isWhole = true;
    files.push_back(ofManifest("rows of 2^61 paths", "counts", [](auto& manifest) {
        manifest.rows = {{0, 0, 1, std::uint64_t{1} << 61, 0}};
    }));
    files.push_back(ofManifest("3,000 files that are not there", "counts", [](auto& manifest) {
        const ManifestFile there = manifest.files.front();
        manifest.rows = {{0, 0, 1, 10, 0}};
        for (std::size_t i = 1; i <= kRows; ++i) {
            manifest.files.push_back({"no" + std::to_string(i), there.sum});
            manifest.rows.push_back({i, 0, 1, 10, 0});
        }
    }));
    files.push_back(
        {"a manifest that names itself", "cycles", Kind::kSetOfSets, [](const std::string& file) {
             SetManifest manifest{{{std::filesystem::path(file).filename(), setBeside(file).sum}},
                                  {{0, 0, 1, 10, 0}}};
             writeContent(file, encodeManifest(manifest));
         }});
    files.push_back(
        {"200,000 levels of JSON", "depth", Kind::kSetOfSets, [](const std::string& file) {
             writeContent(file, R"({"zqs": 1, "files": )" + std::string(200'000, '['));
         }});
}

}  // namespace hostile
