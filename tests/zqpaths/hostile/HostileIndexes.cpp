// Entries, blocks, orders and paths added again, of images.

#include <numeric>

#include "tests/zqpaths/hostile/HostileFiles.hpp"
#include "tests/zqpaths/hostile/ImageParts.hpp"

namespace hostile {
namespace {

using compressedpaths::FolderEntries;

/// The path of "a/" and a file of one character.
constexpr std::uint64_t kShortPath = 4;

/// An image with one folder in its root that has a run of files.
struct OneRun {
    explicit OneRun(std::size_t fileCount) {
        folder = image.addFolder(kRoot, 0, image.storedName("a/"));
        image.closeRing(kRoot, {kFolderLink | folder});
        run = image.addRun(folder, 0, std::vector<std::string>(fileCount, image.storedName("f")));
        image.closeRing(folder, {run});
    }

    ImageParts image;
    FolderNumber folder;
    Link run;
};

/// A file with such an image, to which `make(one)` adds an index. It says the truth of its text.
template <class Make>
HostileFile ofRun(const char* name, const char* attacks, std::size_t fileCount, Make make) {
    return {name, attacks, Kind::kImage, [fileCount, make](const std::string& file) {
                OneRun one(fileCount);
                make(one);
                const std::uint64_t count = one.image.pathCount();
                writeSegment(file, one.image.bytes(), {count, count * kShortPath});
            }};
}

template <class T>
void putAll(ImageParts& image, Part part, std::size_t count, T value) {
    const std::vector<T> values(count, value);
    image.put(part, std::span<const T>(values));
}

void addEntries(Files& files) {
    files.push_back(ofRun("2^40 paths of four files", "counts", 4, [](OneRun& one) {
        one.image.addEntry(std::uint64_t{1} << 40, one.run);
        one.image.order();
    }));
    files.push_back(ofRun("30,000 entries of all 30,000 files", "counts", 30'000, [](OneRun& one) {
        for (int i = 0; i < 30'000; ++i) one.image.addEntry(30'000, one.run);
        one.image.order();
    }));
    files.push_back(
        ofRun("30,000 entries of the last of 30,000 files", "combs", 30'000, [](OneRun& one) {
            for (int i = 0; i < 30'000; ++i) one.image.addEntry(1, one.run, 29'999);
            one.image.order();
        }));
    files.back().isWhole = true;
    files.push_back(ofRun("200,000 entries without files", "counts", 1, [](OneRun& one) {
        for (int i = 0; i < 200'000; ++i) one.image.addEntry(0, one.run);
        one.image.addEntry(1, one.run);
        one.image.order();
    }));
    files.back().isWhole = true;
    files.push_back(
        ofRun("blocks that all begin at the first path", "counts", 30'000, [](OneRun& one) {
            for (std::uint32_t i = 0; i < 30'000; ++i) one.image.addEntry(1, one.run, i);
            one.image.order();
            putAll<FolderEntries::Block>(one.image, Part::kEntryBlocks,
                                         30'000 / FolderEntries::kBlockSize, {0, 0});
        }));
    files.push_back(ofRun("2^60 paths without a place", "counts", 4, [](OneRun& one) {
        one.image.addEntry(4, one.run);
        one.image.order();
        putAll(one.image, Part::kUnpairedCounts, 30'000, (std::uint64_t{1} << 60) + 1);
    }));
    files.push_back(ofRun("30,000 places without paths", "counts", 4, [](OneRun& one) {
        one.image.addEntry(4, one.run);
        one.image.order();
        putAll<compressedpaths::image::UnpairedPlace>(one.image, Part::kUnpairedPlaces, 30'000,
                                                      {1, one.run, 0, 0, 0});
    }));
    files.back().isWhole = true;
    files.push_back(ofRun("30,000 paths added again as one", "overlaps", 4, [](OneRun& one) {
        one.image.addEntry(4, one.run);
        one.image.order();
        struct Repeated {
            std::uint64_t number;
            std::uint32_t link;
            std::uint32_t index;
        };
        putAll<Repeated>(one.image, Part::kRepeatedPaths, 30'000, {4, one.run, 0});
        putAll(one.image, Part::kRepeatedOrder, 30'000, std::uint32_t{0});
    }));
}

/// Entries in turns of two runs at the beginning of the names and two at their end.
void addTurns(Files& files) {
    files.push_back(
        {"entries that a search goes back and forth with", "combs", Kind::kImage,
         [](const std::string& file) {
             ImageParts image;
             const FolderNumber top = image.addFolder(kRoot, 0, image.storedName("a/"));
             image.closeRing(kRoot, {kFolderLink | top});
             std::vector<Link> runs;
             const std::vector<std::string> names(8, image.storedName("f"));
             for (std::uint64_t i = 0; i < 8000; ++i)
                 runs.push_back(image.addRun(top, i * names.size(), names));
             image.closeRing(top, runs);
             for (int i = 0; i < 10'000; ++i)
                 for (const std::size_t run : std::vector<std::size_t>{4000, 4001, 0, 1})
                     image.addEntry(1, runs[run]);
             image.order();
             const std::uint64_t count = image.pathCount();
             writeSegment(file, image.bytes(), {count, count * kShortPath});
         },
         true});
}

void addOrders(Files& files) {
    files.push_back(
        ofRun("an entry that the order has 100,000 times", "overlaps", 30'000, [](OneRun& one) {
            one.image.addEntry(30'000, one.run);
            one.image.order();
            putAll(one.image, Part::kEntriesByFolder, 100'000, std::uint32_t{0});
        }));
    files.push_back(
        ofRun("folders that the order has 30,000 times", "overlaps", 1, [](OneRun& one) {
            const std::string name = one.image.storedName("b");
            const FolderNumber inside = one.image.addFolder(one.folder, 1, name);
            one.image.closeRing(one.folder, {one.run, kFolderLink | inside});
            one.image.addEntry(1, one.run);
            one.image.order();
            std::vector<std::uint32_t> order(60'000, one.folder);
            std::fill(order.begin() + 30'000, order.end(), inside);
            one.image.put(Part::kFoldersByName, std::span<const std::uint32_t>(order));
        }));
    files.push_back(ofRun("entries in the order of no folder", "combs", 30'000, [](OneRun& one) {
        for (std::uint32_t i = 0; i < 30'000; ++i) one.image.addEntry(1, one.run, i);
        one.image.order();
        std::vector<std::uint32_t> order(30'000);
        std::iota(order.rbegin(), order.rend(), 0U);
        one.image.put(Part::kEntriesByFolder, std::span<const std::uint32_t>(order));
    }));
}

}  // namespace

void addHostileIndexes(Files& files) {
    addEntries(files);
    addTurns(files);
    addOrders(files);
}

}  // namespace hostile
