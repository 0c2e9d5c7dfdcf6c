// Opening a set from a mapped image, next to mapping the list itself and finding its lines; writing
// an image and checking one. The files stand in the system's cache.

#include <sys/mman.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>
#include <streambuf>

#include "bench/RealPaths.hpp"
#include "tests/support/HeapMeter.hpp"

namespace {

using bench::Order;
using compressedpaths::HuffmanPathTree;

/// A temporary file with some bytes, which can be mapped.
class MappedFile {
public:
    explicit MappedFile(std::string_view bytes) : file_(std::tmpfile()), size_(bytes.size()) {
        if (file_ == nullptr || std::fwrite(bytes.data(), 1, size_, file_) != size_ ||
            std::fflush(file_) != 0)
            throw std::bad_alloc();
    }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;
    ~MappedFile() { std::fclose(file_); }

    /// Calls `use(bytes)` on the file as it is mapped for that time.
    template <class Use>
    void map(Use use) const {
        void* const mapped = mmap(nullptr, size_, PROT_READ, MAP_SHARED, fileno(file_), 0);
        if (mapped == MAP_FAILED) throw std::bad_alloc();
        use(std::span(static_cast<const std::byte*>(mapped), size_));
        munmap(mapped, size_);
    }

private:
    std::FILE* file_;
    std::size_t size_;
};

std::string imageOf(Order order) {
    std::ostringstream out;
    bench::filledSet(order).writeImage(out);
    return out.str();
}

const MappedFile& image(Order order) {
    static std::array<std::unique_ptr<MappedFile>, bench::kOrders.size()> files;
    auto& file = files.at(static_cast<std::size_t>(order));
    if (!file) file = std::make_unique<MappedFile>(imageOf(order));
    return *file;
}

void openText(benchmark::State& state, Order order) {
    const MappedFile file(bench::blob(order).text);
    for (auto _ : state) {
        file.map([](std::span<const std::byte> bytes) {
            const auto* const begin = reinterpret_cast<const char*>(bytes.data());
            const char* const end = begin + bytes.size();
            std::vector<std::uint32_t> begins;
            for (const char* line = begin; line != end;) {
                begins.push_back(static_cast<std::uint32_t>(line - begin));
                line = static_cast<const char*>(
                           std::memchr(line, '\n', static_cast<std::size_t>(end - line))) +
                       1;
            }
            benchmark::DoNotOptimize(begins.data());
        });
    }
}

void openImage(benchmark::State& state, Order order) {
    const MappedFile& file = image(order);
    const std::size_t number = (bench::pathCount() + 1) / 2;
    std::string text;
    file.map([&](std::span<const std::byte> bytes) {
        const compressedpaths::HeapMeter use;
        const auto set = HuffmanPathTree::openImage(bytes);
        set->appendText(number, "/", text);
        state.counters["heap_bytes"] = static_cast<double>(use.now());
        if (bench::withoutMarker(text) != bench::texts(order)[number - 1])
            state.SkipWithError("a path differs from what was added");
    });
    for (auto _ : state) {
        file.map([&](std::span<const std::byte> bytes) {
            const auto set = HuffmanPathTree::openImage(bytes);
            text.clear();
            set->appendText(number, "/", text);
            benchmark::DoNotOptimize(text.data());
        });
    }
}

/// Counts what it is given.
class CountingBuffer : public std::streambuf {
public:
    std::size_t size() const noexcept { return size_; }

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        benchmark::DoNotOptimize(bytes);
        size_ += static_cast<std::size_t>(count);
        return count;
    }
    int_type overflow(int_type character) override {
        ++size_;
        return traits_type::not_eof(character);
    }

private:
    std::size_t size_ = 0;
};

void writeImage(benchmark::State& state, Order order) {
    const HuffmanPathTree& set = bench::filledSet(order);
    std::size_t size = 0;
    for (auto _ : state) {
        CountingBuffer buffer;
        std::ostream out(&buffer);
        set.writeImage(out);
        size = buffer.size();
    }
    bench::countPaths(state);
    bench::countBytes(state, "saved_bytes_a_path", static_cast<double>(size));
}

void verifyImage(benchmark::State& state, Order order) {
    image(order).map([&](std::span<const std::byte> bytes) {
        for (auto _ : state) HuffmanPathTree::verifyImage(bytes);
    });
    bench::countPaths(state);
}

[[maybe_unused]] const bool areRegistered = [] {
    for (const Order order : bench::kOrders) {
        bench::registerRun("opening", order, "text, its lines found", openText)
            ->Unit(benchmark::kMicrosecond);
        bench::registerRun("opening", order, "image and one path", openImage)
            ->Unit(benchmark::kMicrosecond);
        bench::registerRun("images", order, "writing", writeImage)->Unit(benchmark::kMillisecond);
        bench::registerRun("images", order, "verifying", verifyImage)
            ->Unit(benchmark::kMillisecond);
    }
    return true;
}();

}  // namespace
