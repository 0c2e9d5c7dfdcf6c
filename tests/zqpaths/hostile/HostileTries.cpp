// Folders, runs and names of images: how deep they are, how they hang together, what they share.

#include <algorithm>

#include "tests/support/PathSets.hpp"
#include "tests/zqpaths/hostile/HostileFiles.hpp"
#include "tests/zqpaths/hostile/ImageParts.hpp"
#include "zqpaths/PathSetWriter.hpp"

namespace hostile {
namespace {

using zqpaths::PathSetWriter;

/// A file with an image made by hand. `make(image)` makes it, and returns the bytes of text that
/// the file is to say it has.
template <class Make>
HostileFile ofImage(const char* name, const char* attacks, Make make) {
    return {name, attacks, Kind::kImage, [make](const std::string& file) {
                ImageParts image;
                const std::uint64_t textSize = make(image);
                writeSegment(file, image.bytes(), {image.pathCount(), textSize});
            }};
}

template <class Add>
HostileFile ofPaths(const char* name, const char* attacks, Add add) {
    return {name, attacks, Kind::kImage,
            [add](const std::string& file) {
                PathSetWriter writer(file, PathSetWriter::Mode::kReplace);
                add(writer);
                writer.commit();
            },
            true};
}

/// A folder in the root, and its number.
FolderNumber topFolder(ImageParts& image) {
    const FolderNumber folder = image.addFolder(kRoot, 0, image.storedName("a/"));
    image.closeRing(kRoot, {kFolderLink | folder});
    return folder;
}

// --- Shapes that any set can have.

std::string levels(std::size_t count, const std::string& name) {
    std::string path;
    for (std::size_t i = 0; i < count; ++i) path += name + '/';
    return path;
}

void addDeepSets(Files& files) {
    files.push_back(ofPaths("100,000 levels", "depth", [](PathSetWriter& writer) {
        writer.add(levels(100'000, "d") + "file");
    }));
    files.push_back(ofPaths("a comb of 3,000 levels", "depth", [](PathSetWriter& writer) {
        std::string path;
        for (int i = 0; i < 3000; ++i) {
            writer.add(path + "file");
            path += "d/";
        }
    }));
    files.push_back(ofPaths("two deep folders in turns", "depth", [](PathSetWriter& writer) {
        const std::string one = levels(1000, "d");
        const std::string other = levels(1000, "e");
        for (int i = 0; i < 3000; ++i) writer.add((i % 2 == 0 ? one : other) + std::to_string(i));
    }));
    files.push_back(ofPaths("50,000 folders in one, in turns", "counts", [](PathSetWriter& writer) {
        for (int i = 0; i < 50'000; ++i) writer.add("folder/" + std::to_string(i) + "/f");
    }));
    files.push_back(ofPaths("one path 200,000 times", "counts", [](PathSetWriter& writer) {
        for (int i = 0; i < 200'000; ++i) writer.add("folder/file");
    }));
    files.push_back(ofPaths("names of 100,000 characters", "lengths", [](PathSetWriter& writer) {
        std::string name(100'000, 'n');
        for (int i = 0; i < 100; ++i) writer.add("folder/" + std::to_string(i) + name);
    }));
}

// --- Ways that lead nowhere, or on for ever.

void addCycles(Files& files) {
    files.push_back(ofImage("folders that are in each other", "cycles", [](ImageParts& image) {
        const FolderNumber a = topFolder(image);
        const FolderNumber b = image.addFolder(a, 0, image.storedName("b"));
        image.folder(a).parent = b;
        const Link run = image.addRun(b, 0, {image.storedName("f")});
        image.closeRing(b, {run});
        image.closeRing(a, {kFolderLink | b});
        image.addEntry(1, run);
        image.order();
        return 8U;
    }));
    files.push_back(
        ofImage("items that follow each other in rings", "cycles", [](ImageParts& image) {
            const FolderNumber top = topFolder(image);
            std::vector<Link> runs;
            for (std::uint64_t i = 0; i < 20'000; ++i)
                runs.push_back(image.addRun(top, i, {image.storedName("f")}));
            image.closeRing(top, runs);
            image.setNext(runs[runs.size() - 2], runs[1]);
            image.addEntryIn(20'000, top, 0);
            image.order();
            return 20'000U * 4;
        }));
    files.push_back(
        ofImage("40,000 items that an entry goes through", "combs", [](ImageParts& image) {
            const FolderNumber top = topFolder(image);
            std::vector<Link> runs;
            for (std::uint64_t i = 0; i < 40'000; ++i)
                runs.push_back(image.addRun(top, i, {image.storedName("f")}));
            image.closeRing(top, runs);
            image.addEntryIn(40'000, top, 0);
            image.order();
            return 40'000U * 4;
        }));
    files.back().isWhole = true;
}

// --- Names that many have.

constexpr std::uint32_t kRest = 100'000;

void addSharedNames(Files& files) {
    files.push_back(ofImage("10,000 folders of one long name", "overlaps", [](ImageParts& image) {
        const std::uint32_t name =
            image.addNames(varint(0) + image.storedName(std::string(200'000, 'n') + '/'));
        std::vector<Link> items;
        items.reserve(10'000);
        for (int i = 0; i < 10'000; ++i)
            items.push_back(kFolderLink | image.addFolderNamedAt(kRoot, name));
        image.closeRing(kRoot, {items.front()});
        const Link run = image.addRun(1, 0, {image.storedName("f")});
        image.closeRing(1, {run});
        image.addEntry(1, run);
        image.order();
        return 200'000U + 3;
    }));
    files.push_back(
        ofImage("10,000 names that lie in each other", "overlaps", [](ImageParts& image) {
            // Each is position 0, then as many bits as all that follows has.
            constexpr std::uint32_t kNames = 10'000;
            FolderNumber parent = kRoot;
            for (std::uint32_t i = 0; i < kNames; ++i) {
                const std::uint32_t bits = 8 * (5 * (kNames - 1 - i) + kRest);
                const std::string length{static_cast<char>(bits | 0x80),
                                         static_cast<char>(bits >> 7 | 0x80),
                                         static_cast<char>(bits >> 14 & 0x7F)};
                const FolderNumber folder = image.addFolder(parent, 0, '\xF8' + length);
                image.closeRing(parent, {kFolderLink | folder});
                parent = folder;
            }
            image.addNames(std::string(kRest, '\x55'));
            const Link run = image.addRun(parent, 0, {image.storedName("f")});
            image.closeRing(parent, {run});
            image.addEntry(1, run);
            image.order();
            return std::uint64_t{1} << 30;
        }));
    files.push_back(
        ofImage("a long name that 10,000 entries have", "ratios", [](ImageParts& image) {
            const FolderNumber top = topFolder(image);
            const Link run = image.addRun(top, 0, {image.storedName(std::string(100'000, '/'))});
            image.closeRing(top, {run});
            for (int i = 0; i < 10'000; ++i) image.addEntry(1, run);
            image.order();
            return 10'000U * 3;
        }));
    files.push_back(
        ofImage("a long folder that 10,000 entries are in", "ratios", [](ImageParts& image) {
            const std::string name = image.storedName(std::string(100'000, 'd') + '/');
            const FolderNumber top = image.addFolder(kRoot, 0, name);
            image.closeRing(kRoot, {kFolderLink | top});
            const Link run =
                image.addRun(top, 0, std::vector<std::string>(10'000, image.storedName("f")));
            image.closeRing(top, {run});
            for (std::uint32_t i = 0; i < 10'000; ++i) image.addEntry(1, run, i);
            image.order();
            return 200'000U;
        }));
    files.push_back(
        ofImage("a comb of 5,000 levels with little text", "depth", [](ImageParts& image) {
            FolderNumber folder = topFolder(image);
            std::vector<Link> runs;
            for (int i = 0; i < 5000; ++i) {
                const Link run = image.addRun(folder, 0, {image.storedName("f")});
                const FolderNumber inside = image.addFolder(folder, 1, image.storedName("d"));
                image.closeRing(folder, {run, kFolderLink | inside});
                image.addEntry(1, run);
                folder = inside;
            }
            const Link run = image.addRun(folder, 0, {image.storedName("f")});
            image.closeRing(folder, {run});
            image.addEntry(1, run);
            image.order();
            return 100'000U;
        }));
    files.push_back(ofImage("samples that lead to one name", "overlaps", [](ImageParts& image) {
        const FolderNumber top = topFolder(image);
        std::vector<std::string> names(50'000, image.storedName("f"));
        const Link run = image.addRun(top, 0, names);
        const std::size_t samples = image[Part::kNames].size() - names.size() * names[0].size();
        std::fill_n(image[Part::kNames].begin() + run + 16, samples - run - 16, '\0');
        image.closeRing(top, {run});
        image.addEntry(names.size(), run);
        image.order();
        return 50'000U * 4;
    }));
}

// --- Keys that collide.

constexpr std::size_t kFormerFiles = 20'000;

/// A run whose files may all have become folders, and a table in which each search takes all.
std::uint64_t makeCrowdedTable(ImageParts& image, std::vector<std::uint32_t> slots) {
    const FolderNumber top = topFolder(image);
    const Link run =
        image.addRun(top, 0, std::vector<std::string>(2 * kFormerFiles, image.storedName("f")),
                     compressedpaths::arena::kHasFormerFiles);
    image.closeRing(top, {run});
    image.addEntry(2 * kFormerFiles, run);
    image.order();
    image.put(Part::kFormerFiles, std::span<const std::uint32_t>(slots));
    image.header().formerFileCount = kFormerFiles;
    return 2 * kFormerFiles * 4;
}

void addCollidingKeys(Files& files) {
    files.push_back(
        ofImage("a table of former files without an end", "colliding keys", [](ImageParts& image) {
            return makeCrowdedTable(image, std::vector<std::uint32_t>(1 << 15, 1));
        }));
    files.push_back(
        ofImage("former files whose keys collide", "colliding keys", [](ImageParts& image) {
            // Whatever the hash of the others is, half of them begin in here.
            std::vector<std::uint32_t> slots(1 << 15, kNone);
            std::fill_n(slots.begin(), kFormerFiles, 1U);
            return makeCrowdedTable(image, slots);
        }));
    files.back().isWhole = true;  // none of the files is a folder, and none is found to be one
}

}  // namespace

void addHostileTries(Files& files) {
    addDeepSets(files);
    addCycles(files);
    addSharedNames(files);
    addCollidingKeys(files);
}

}  // namespace hostile
