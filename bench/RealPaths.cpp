#include "bench/RealPaths.hpp"

#include <malloc.h>

#include <cstdlib>
#include <fstream>
#include <iostream>

#include "tools/zqpaths/DirectoryWalk.hpp"
#include "tools/zqpaths/PathComponents.hpp"
#include "tools/zqpaths/PathText.hpp"

namespace bench {
namespace {

constexpr std::size_t kBatchSize = 65536;

std::vector<std::string> readPaths() {
    std::vector<std::string> lines;
    if (const char* list = std::getenv("ZQ_PATHS")) {
        std::ifstream in(list);
        for (std::string line; std::getline(in, line);) lines.push_back(line);
    } else {
        zqpaths::walkDirectory(
            "/usr", {}, [&](std::string_view path) { lines.emplace_back(path); },
            [](std::string_view path, std::string_view reason) {
                std::cerr << path << ": " << reason << '\n';
            });
    }
    return lines;
}

const std::vector<std::string>& lines() {
    static const std::vector<std::string> all = readPaths();
    return all;
}

std::u16string toUtf16(std::string_view bytes) {
    std::u16string text;
    zqpaths::appendUtf16(bytes, text);
    return text;
}

std::vector<std::u16string> toUtf16(const std::vector<std::string_view>& components) {
    std::vector<std::u16string> texts;
    texts.reserve(components.size());
    for (const std::string_view component : components) texts.push_back(toUtf16(component));
    return texts;
}

std::vector<Batch> makeBatches() {
    std::vector<Batch> all;
    std::size_t roomLeft = 0;
    std::string_view lastFolder;
    for (const std::string& line : lines()) {
        const std::string_view folder(line.data(), zqpaths::folderLength(line));
        const zqpaths::CutPath cut = zqpaths::cutPath(line);
        if (roomLeft == 0) {
            all.emplace_back();
            roomLeft = kBatchSize;
        }
        Batch& batch = all.back();
        if (batch.folders.empty() || folder != lastFolder) {
            batch.folders.push_back(toUtf16(cut.folder));
            batch.files.emplace_back();
            lastFolder = folder;
        }
        batch.files.back().push_back(toUtf16(cut.fileName));
        --roomLeft;
    }
    return all;
}

std::unordered_map<char16_t, double> countCharacters() {
    std::unordered_map<char16_t, double> frequencyOf;
    const auto count = [&](const std::vector<std::vector<std::u16string>>& lists) {
        for (const auto& list : lists)
            for (const std::u16string& component : list)
                for (const char16_t character : component) ++frequencyOf[character];
    };
    for (const Batch& batch : batches()) {
        count(batch.folders);
        count(batch.files);
    }
    return frequencyOf;
}

}  // namespace

const std::vector<std::u16string>& paths() {
    static const std::vector<std::u16string> all = [] {
        std::vector<std::u16string> texts;
        for (const std::string& line : lines()) texts.push_back(toUtf16(line));
        return texts;
    }();
    return all;
}

const std::string& text() {
    static const std::string all = [] {
        std::string joined;
        for (const std::string& line : lines()) joined.append(line).push_back('\n');
        return joined;
    }();
    return all;
}

const std::vector<Batch>& batches() {
    static const std::vector<Batch> all = makeBatches();
    return all;
}

const std::unordered_map<char16_t, double>& frequencies() {
    static const std::unordered_map<char16_t, double> frequencyOf = countCharacters();
    return frequencyOf;
}

void fill(compressedpaths::HuffmanPathTree& set) {
    set.deflateHuffman(frequencies());
    for (const Batch& batch : batches()) {
        Batch copy = batch;
        set.generateCodeAsyncAndAddPaths(copy.folders, copy.files);
    }
}

std::size_t heapBytes() {
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

}  // namespace bench
