// Coding trees and their tables: words as long as can be, steps and branches that lead nowhere.

#include <numeric>

#include "compressedpaths/sixpacks/BitVectors.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/SetFiles.hpp"
#include "tests/zqpaths/hostile/HostileFiles.hpp"
#include "tests/zqpaths/hostile/ImageParts.hpp"
#include "zqpaths/file/SetFileWriter.hpp"

namespace hostile {
namespace {

using compressedpaths::HuffmanPathTree;
using zqpaths::SegmentForm;

std::string packed(const std::vector<bool>& shape) {
    std::vector<std::uint8_t> bytes;
    compressedpaths::sixpacks::boolVecToBytes(bytes, shape);
    return {bytes.begin(), bytes.end()};
}

/// The shape of a coding tree in which each character has a word that is one bit longer.
std::string combOf(std::size_t leafCount) {
    std::vector<bool> shape;
    for (std::size_t i = 1; i < leafCount; ++i) {
        shape.push_back(false);
        shape.push_back(true);
    }
    shape.push_back(true);
    return packed(shape);
}

/// The shape of one in which all 256 characters have words of eight bits.
std::string evenShape() {
    constexpr std::size_t kLevels = 8;
    std::vector<bool> shape;
    std::vector<std::size_t> ahead{0};  // levels of the nodes that come, the next one last
    while (!ahead.empty()) {
        const std::size_t level = ahead.back();
        ahead.pop_back();
        shape.push_back(level == kLevels);
        if (level < kLevels) ahead.insert(ahead.end(), 2, level + 1);
    }
    return packed(shape);
}

std::vector<char16_t> charactersFrom(char16_t first, std::size_t count, std::size_t distance = 1) {
    std::vector<char16_t> characters(count);
    for (std::size_t i = 0; i < count; ++i)
        characters[i] = static_cast<char16_t>(first + i * distance);
    return characters;
}

void putCode(ImageParts& image, const std::string& shape, const std::vector<char16_t>& leaves) {
    image[Part::kShape] = shape;
    image.put(Part::kLeaves, std::span<const char16_t>(leaves));
    image[Part::kFrequencies].clear();
}

/// A name of so many bits, all ones: of a comb's last character, or of whatever they lead to.
std::string nameOfOnes(std::size_t bitCount) {
    return '\xF8' + varint(bitCount) + std::string((bitCount + 7) / 8, '\xFF');
}

/// A file in a folder, both of these names.
void putFile(ImageParts& image, const std::string& folderName,
             const std::vector<std::string>& names) {
    const FolderNumber folder = image.addFolder(kRoot, 0, folderName);
    image.closeRing(kRoot, {kFolderLink | folder});
    const Link run = image.addRun(folder, 0, names);
    image.closeRing(folder, {run});
    image.addEntry(names.size(), run);
    image.order();
}

template <class Make>
HostileFile ofCode(const char* name, const char* attacks, Make make) {
    return {name, attacks, Kind::kImage, [make](const std::string& file) {
                ImageParts image;
                const std::uint64_t textSize = make(image);
                writeSegment(file, image.bytes(), {image.pathCount(), textSize});
            }};
}

void addCombs(Files& files) {
    files.push_back(ofCode("a code of 65,535 levels", "long code words", [](ImageParts& image) {
        putCode(image, combOf(65'535), charactersFrom(1, 65'535));
        putFile(image, nameOfOnes(65'534), {nameOfOnes(65'534)});
        return 8U;
    }));
    files.push_back(
        ofCode("a comb with words of 56 bits", "long code words", [](ImageParts& image) {
            putCode(image, combOf(57), charactersFrom('a', 57));
            const std::vector<std::string> names(1000, nameOfOnes(5600));
            putFile(image, nameOfOnes(56), names);
            return 1000U * 203;  // each character is a Latin letter of two bytes
        }));
    files.back().isWhole = true;
    files.push_back(ofCode("a coding tree that has no end", "counts", [](ImageParts& image) {
        putCode(image, std::string(200'000, '\0') + std::string(1, '\7'), charactersFrom('a', 2));
        putFile(image, nameOfOnes(8), {nameOfOnes(8)});
        return 8U;
    }));
    files.push_back(ofCode("one character, with words of no bits", "ratios", [](ImageParts& image) {
        putCode(image, combOf(1), charactersFrom('a', 1));
        putFile(image, nameOfOnes(400'000), {nameOfOnes(400'000)});
        return 1U << 20;
    }));
}

/// Segments that each have a code of their own, and one path: twice the first character, whose word
/// is of zeros.
void writeSegments(const std::string& file, std::size_t count, const std::string& shape,
                   const std::vector<char16_t>& leaves, char bitCount) {
    ImageParts image;
    putCode(image, shape, leaves);
    const std::string name{bitCount, '\0'};
    putFile(image, name, {name});
    const std::string bytes = image.bytes();
    zqpaths::SetFileWriter writer(file, zqpaths::SetFileWriter::Mode::kReplace);
    for (std::size_t i = 0; i < count; ++i)
        writer.append({SegmentForm::kImage, 1, 3, 0, zqpaths::bytesOf(bytes)});
    writer.commit();
}

void addSegments(Files& files) {
    files.push_back({"100 segments with 256 pages of code words each", "ratios", Kind::kImage,
                     [](const std::string& file) {
                         writeSegments(file, 100, evenShape(), charactersFrom('a', 256, 0x100), 8);
                     },
                     true});
    files.push_back({"60 segments with a comb of 4,000 characters each", "long code words",
                     Kind::kImage, [](const std::string& file) {
                         writeSegments(file, 60, combOf(4000), charactersFrom('a', 4000), 1);
                     }});
}

// --- Tables that come with the image.

constexpr std::size_t kStepCount = 4096;

/// The parts of a set that is so large that it has tables, of 70,000 files in one folder.
ImageParts withTables(std::uint64_t& textSize) {
    HuffmanPathTree set;
    makeCode(set);
    compressedpaths::CodedBatch batch(set);
    batch.beginEntry(0);
    batch.appendFolder(u"a/");
    batch.appendFile(std::u16string(200'000, u'a'));
    for (std::size_t i = 1; i < compressedpaths::image::kMinPathsWithTables; ++i)
        batch.appendFile(u"f");
    set.addCodedBatch(batch);
    textSize = 4 * compressedpaths::image::kMinPathsWithTables + 200'000;
    return ImageParts(set);
}

template <class Change>
HostileFile ofTables(const char* name, const char* attacks, Change change) {
    return {name, attacks, Kind::kImage, [change](const std::string& file) {
                std::uint64_t textSize = 0;
                ImageParts image = withTables(textSize);
                change(image);
                writeSegment(file, image.bytes(), {image.pathCount(), textSize});
            }};
}

void addTables(Files& files) {
    files.push_back(
        ofTables("steps of many characters and no bits", "ratios", [](ImageParts& image) {
            // Four characters, at the bits 0 each; every fourth look-up takes
            // a bit.
            std::vector<std::uint64_t> steps(kStepCount);
            for (std::size_t i = 0; i < steps.size(); ++i)
                steps[i] = 0x6161616100000300 | (i % 2 == 0 ? 1 : 0);
            image.put(Part::kSteps, std::span<const std::uint64_t>(steps));
        }));
    files.push_back(ofTables("branches that lead to each other", "cycles", [](ImageParts& image) {
        const std::vector<std::uint64_t> steps(kStepCount, std::uint64_t{1} << 63 | 1 << 8 | 1);
        image.put(Part::kSteps, std::span<const std::uint64_t>(steps));
        const std::vector<std::uint32_t> branches{1, 1, 0, 0};
        image.put(Part::kBranches, std::span<const std::uint32_t>(branches));
    }));
}

}  // namespace

void addHostileCodes(Files& files) {
    addCombs(files);
    addSegments(files);
    addTables(files);
}

}  // namespace hostile
