#pragma once
// Set files with segments of any bytes, as the file room sees them, and files as bytes:
//
//     writeSet("s.zqp", SetFileWriter::Mode::kCreate, {"one", "two"});
//     segmentsOf("s.zqp");  // {"one", "two"}, after all sums have been looked at
//
// Threads: free functions without state.

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/file/SetFile.hpp"
#include "zqpaths/file/SetFileWriter.hpp"

namespace zqpaths {

using Texts = std::vector<std::string>;

inline std::span<const std::byte> bytesOf(std::string_view text) {
    return std::as_bytes(std::span(text));
}

/// A segment with these bytes, which claims to hold one path.
inline SegmentBytes segmentOf(std::string_view text) {
    return {SegmentForm::kImage, 1, 2, 0, bytesOf(text)};
}

inline void appendAll(SetFileWriter& writer, const Texts& segments) {
    for (const std::string& segment : segments) writer.append(segmentOf(segment));
}

inline void writeSet(const std::string& path, SetFileWriter::Mode mode, const Texts& segments) {
    SetFileWriter writer(path, mode);
    appendAll(writer, segments);
    writer.commit();
}

inline Texts segmentsOf(const SetFile& file) {
    Texts texts;
    for (const SegmentEntry& entry : file.segments()) {
        const auto bytes = file.bytesOf(entry);
        texts.emplace_back(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    return texts;
}

/// Fails the test that asks if a sum does not hold.
inline std::shared_ptr<const SetFile> openWhole(const std::string& path) {
    const auto file = SetFile::open(path);
    for (const Error& damage : file->verifySums()) ADD_FAILURE() << damage.what();
    return file;
}
inline Texts segmentsOf(const std::string& path) {
    return segmentsOf(*openWhole(path));
}

/// What there is besides segments, as "NAME: COUNT BYTES".
inline Texts blocksOf(const SetFile& file) {
    Texts texts;
    const auto append = [&](const char* name, const std::optional<BlockEntry>& block) {
        if (!block) return;
        const auto bytes = file.bytesOf(block);
        texts.push_back(std::string(name) + ": " + std::to_string(block->count) + " " +
                        std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    };
    append("gone", file.state().directory.gone);
    append("scans", file.state().directory.scans);
    return texts;
}

inline std::string contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline void writeContent(const std::string& path, std::string_view content) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
}

/// The names in a directory, in any order.
inline Texts namesIn(const std::string& directory) {
    Texts names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.push_back(entry.path().filename());
    return names;
}

/// The kind of what `call` throws, and its text; fails the test that asks if it throws nothing.
struct Refusal {
    ErrorKind kind;
    std::string text;
};

template <class Call>
Refusal refusalOf(Call call) {
    try {
        call();
    } catch (const Error& error) {
        return {error.kind(), error.what()};
    }
    ADD_FAILURE() << "nothing is refused";
    return {ErrorKind::kWrongUse, "nothing"};
}

}  // namespace zqpaths
