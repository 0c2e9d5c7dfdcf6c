// Prints paths of made-up trees, as large data sets have them, one a line; the same for the same
// seed on every machine:  made_paths COUNT [SEED]
//
// A tree is that of a data set: dated or numbered folders, some levels deep, and in each of the
// deepest a few to some thousand files whose names share a beginning and an end:
//
//     /data/crawl-0042/2023-07-14/part-00017/segment_000123.parquet
//     /data/images-0007/train/n0482/IMG_20230714_5d1c09.jpg

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <random>
#include <string>

namespace {

constexpr std::size_t kBufferSize = std::size_t{1} << 20;

/// Lines on standard output, in large pieces.
class Lines {
public:
    Lines() { buffer_.reserve(kBufferSize + 4096); }

    void print(const std::string& folder, const std::string& name) {
        buffer_.append(folder).append(name).push_back('\n');
        if (buffer_.size() >= kBufferSize) flush();
    }

    void flush() {
        std::fwrite(buffer_.data(), 1, buffer_.size(), stdout);
        buffer_.clear();
    }

private:
    std::string buffer_;
};

std::string digits(std::uint64_t value, std::size_t width) {
    std::string text = std::to_string(value);
    return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

std::string hexDigits(std::uint64_t value, std::size_t width) {
    std::array<char, 16> text{};
    auto* const end = std::to_chars(text.data(), text.data() + text.size(), value, 16).ptr;
    const std::string shown(text.data(), end);
    return shown.size() < width ? std::string(width - shown.size(), '0') + shown
                                : shown.substr(0, width);
}

class Trees {
public:
    explicit Trees(std::uint64_t seed) : random_(seed) {}

    /// Prints the next folder with files, `most` of them at the most, and returns how many.
    std::uint64_t printFolder(std::uint64_t most, Lines& lines) {
        if (foldersLeft_ == 0) beginTree();
        --foldersLeft_;
        const std::string folder = tree_ + dateOrClass() + "part-" + digits(folder_++, 5) + '/';
        const std::uint64_t size = std::min(most, folderSize());
        const std::uint64_t first = below(1'000'000);
        for (std::uint64_t i = 0; i < size; ++i) lines.print(folder, fileName(first + i));
        return size;
    }

private:
    // std::uniform_int_distribution differs between libraries.
    std::uint64_t below(std::uint64_t end) { return random_() % end; }

    void beginTree() {
        static constexpr std::array kKinds{"crawl", "images", "audio", "logs", "sensors"};
        static constexpr std::array kEnds{".parquet", ".jpg", ".flac", ".log.gz", ".bin"};
        kind_ = below(kKinds.size());
        tree_ = std::string("/data/") + kKinds[kind_] + '-' + digits(treeNumber_++, 4) + '/';
        end_ = kEnds[kind_];
        folder_ = 0;
        foldersLeft_ = 50 + below(2000);
    }

    std::string dateOrClass() {
        if (kind_ == 1) return "train/n" + digits(folder_ / 8, 4) + '/';
        const std::uint64_t day = folder_ / 4;
        return digits(2015 + day / 336 % 12, 4) + '-' + digits(1 + day / 28 % 12, 2) + '-' +
               digits(1 + day % 28, 2) + '/';
    }

    /// Mostly some dozens; now and then some thousand.
    std::uint64_t folderSize() { return below(20) == 0 ? 1000 + below(9000) : 5 + below(100); }

    std::string fileName(std::uint64_t number) {
        if (kind_ == 1) return "IMG_" + digits(number, 7) + '_' + hexDigits(random_(), 6) + end_;
        if (kind_ == 3) return "host" + digits(below(400), 3) + '.' + digits(number, 7) + end_;
        return "segment_" + digits(number, 7) + end_;
    }

    std::mt19937_64 random_;
    std::string tree_;
    std::string end_;
    std::size_t kind_ = 0;
    std::uint64_t treeNumber_ = 0;
    std::uint64_t folder_ = 0;
    std::uint64_t foldersLeft_ = 0;
};

bool parse(const char* text, std::uint64_t& value) {
    const char* const end = text + std::strlen(text);
    const auto [parsed, error] = std::from_chars(text, end, value);
    return error == std::errc() && parsed == end;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    std::uint64_t count = 0;
    std::uint64_t seed = 1;
    if (argumentCount < 2 || argumentCount > 3 || !parse(arguments[1], count) ||
        (argumentCount == 3 && !parse(arguments[2], seed))) {
        std::cerr << "made_paths COUNT [SEED]\n";
        return 2;
    }
    Lines lines;
    Trees trees(seed);
    while (count > 0) count -= trees.printFolder(count, lines);
    lines.flush();
    return 0;
}
