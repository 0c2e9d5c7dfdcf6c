#pragma once
// What can be done to a set file, each as a step from one state to another, to be broken off at any
// moment:
//
//     for (const SetFileStep& step : setFileSteps()) {
//         step.prepare(path);
//         step.run(path);
//         statesOf(path) == step.after;
//     }

#include <filesystem>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/SetFiles.hpp"

namespace zqpaths {

/// The blocks of a file, and then its segments; none if there is no file.
using SetFileContent = std::optional<Texts>;

inline Texts contentOfSet(const SetFile& file) {
    Texts content = blocksOf(file);
    for (std::string& segment : segmentsOf(file)) content.push_back(std::move(segment));
    return content;
}

struct SetFileStep {
    std::string name;
    SetFileContent before;
    SetFileContent after;
    std::function<void(const std::string& path)> run;

    /// Makes the file as it is before, and nothing else in its directory.
    void prepare(const std::string& path) const {
        for (const std::string& left : namesIn(directoryOf(path)))
            std::filesystem::remove(directoryOf(path) + left);
        if (before) writeSet(path, SetFileWriter::Mode::kCreate, *before);
    }
};

inline void PrintTo(const SetFileStep& step, std::ostream* out) {
    *out << step.name;
}

inline SetFileContent contentAt(const std::string& path) {
    if (!std::filesystem::exists(path)) return std::nullopt;
    return contentOfSet(*openWhole(path));
}

inline std::vector<SetFileStep> setFileSteps() {
    using Mode = SetFileWriter::Mode;
    const std::string much(100'000, 'x');
    const auto writing = [](Mode mode, const Texts& segments) {
        return [=](const std::string& path) { writeSet(path, mode, segments); };
    };
    const auto rewriting = [](const std::string& path) {
        SetFileWriter writer(path, Mode::kAppend);
        writer.dropFrom(1);
        writer.append(segmentOf("new"));
        writer.commit();
    };
    const auto updating = [](const std::string& path) {
        SetFileWriter writer(path, Mode::kAppend);
        writer.append(segmentOf("one"));
        writer.putGone({1, bytesOf("sixteen bytes...")});
        writer.putScans({7, bytesOf("some scans")});
        writer.commit();
    };
    const auto updatingAndRewriting = [much](const std::string& path) {
        SetFileWriter writer(path, Mode::kAppend);
        writer.putScans({1, bytesOf(much)});
        writer.putGone({1, bytesOf("sixteen bytes...")});
        writer.putScans({7, bytesOf("some scans")});
        writer.dropFrom(1);
        writer.append(segmentOf("one"));
        writer.commit();
    };
    const Texts blocks{"gone: 1 sixteen bytes...", "scans: 7 some scans"};
    return {
        {"updating", Texts{"old"}, Texts{blocks[0], blocks[1], "old", "one"}, updating},
        {"updating and compacting", Texts{"old", much}, Texts{blocks[0], blocks[1], "old", "one"},
         updatingAndRewriting},
        {"creating", std::nullopt, Texts{"one", "two"}, writing(Mode::kCreate, {"one", "two"})},
        {"replacing", Texts{"old"}, Texts{"one", "two"}, writing(Mode::kReplace, {"one", "two"})},
        {"replacing nothing", std::nullopt, Texts{"one"}, writing(Mode::kReplace, {"one"})},
        {"appending", Texts{"old"}, Texts{"old", "one", "two"},
         writing(Mode::kAppend, {"one", "two"})},
        {"compacting", Texts{"old", much}, Texts{"old", "new"}, rewriting}};
}

}  // namespace zqpaths
