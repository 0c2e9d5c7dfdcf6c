#include "bench/RealPaths.hpp"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <random>

#include "zqpaths/directory/DirectoryWalk.hpp"
#include "zqpaths/text/PathComponents.hpp"
#include "zqpaths/text/PathText.hpp"

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

/// What `make(order)` gives, once for each order.
template <class Value>
Value& perOrder(Order order, const std::function<Value(Order)>& make) {
    static std::array<std::unique_ptr<Value>, kOrders.size()> made;
    auto& value = made.at(static_cast<std::size_t>(order));
    if (!value) value = std::make_unique<Value>(make(order));
    return *value;
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

std::vector<Batch> makeBatches(Order order) {
    std::vector<Batch> all;
    std::size_t roomLeft = 0;
    std::string_view lastFolder;
    for (const std::string& line : texts(order)) {
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

std::size_t pathCount() {
    return texts().size();
}

const std::vector<std::string>& texts(Order order) {
    return perOrder<std::vector<std::string>>(order, [](Order wanted) {
        if (wanted == Order::kListed) return readPaths();
        std::vector<std::string> all = texts(Order::kListed);
        std::shuffle(all.begin(), all.end(), std::mt19937_64(1));
        return all;
    });
}

TextBlob makeBlob(const std::vector<std::string>& paths) {
    TextBlob made;
    std::size_t size = 0;
    for (const std::string& path : paths) size += path.size() + 1;
    made.text.reserve(size);
    made.begins.reserve(paths.size() + 1);
    made.begins.push_back(0);
    for (const std::string& path : paths) {
        made.text.append(path).push_back('\n');
        made.begins.push_back(static_cast<std::uint32_t>(made.text.size()));
    }
    return made;
}

const TextBlob& blob(Order order) {
    return perOrder<TextBlob>(order, [](Order wanted) { return makeBlob(texts(wanted)); });
}

const std::vector<std::u16string>& paths(Order order) {
    return perOrder<std::vector<std::u16string>>(order, [](Order wanted) {
        std::vector<std::u16string> all;
        for (const std::string& text : texts(wanted)) all.push_back(toUtf16(text));
        return all;
    });
}

std::vector<Batch>& batches(Order order) {
    return perOrder<std::vector<Batch>>(order, makeBatches);
}

const std::unordered_map<char16_t, double>& frequencies() {
    static const std::unordered_map<char16_t, double> frequencyOf = countCharacters();
    return frequencyOf;
}

void fill(compressedpaths::HuffmanPathTree& set, Order order) {
    set.deflateHuffman(frequencies());
    for (Batch& batch : batches(order))
        set.generateCodeAsyncAndAddPaths(batch.folders, batch.files);
}

compressedpaths::HuffmanPathTree& filledSet(Order order) {
    using Set = std::unique_ptr<compressedpaths::HuffmanPathTree>;
    return *perOrder<Set>(order, [](Order wanted) {
        auto set = std::make_unique<compressedpaths::HuffmanPathTree>();
        fill(*set, wanted);
        return set;
    });
}

std::string_view withoutMarker(std::string_view text) noexcept {
    return text.starts_with('\0') ? text.substr(1) : text;
}

void countPaths(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(pathCount()));
}

void countBytes(benchmark::State& state, const char* name, double bytes) {
    state.counters[name] = bytes / static_cast<double>(pathCount());
}

}  // namespace bench
