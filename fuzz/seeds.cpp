// Writes the inputs that fuzzing begins with, beside those of fuzz/corpus, which were found:
//
//     fuzz_seeds FOLDER image trie ...   # into FOLDER/image, FOLDER/trie, ...
//
// What has a form is made by those who write it; the other targets read choices, and get any.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "fuzz/MadeArchive.hpp"
#include "fuzz/TemporaryFolder.hpp"
#include "tests/support/PathSets.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/directory/ScanRecord.hpp"
#include "zqpaths/update/SetScans.hpp"

namespace {

using Inputs = std::vector<std::string>;

const fuzzing::TemporaryFolder& folder() {
    static const fuzzing::TemporaryFolder made;
    return made;
}

std::string contentOf(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Folders within folders, names that come again, a path that is the folder of others, and bytes
/// that are no characters.
Inputs paths(std::size_t count) {
    Inputs paths{"/usr/bin/env",     "/usr/bin/awk", "/usr/lib",    "/usr/lib/a.so",
                 "caf\xC3\xA9/\xFF", "a//b/",        "/usr/bin/awk"};
    for (std::size_t i = paths.size(); i < count; ++i)
        paths.push_back("var/" + std::to_string(i % 5) + "/log." + std::to_string(i));
    paths.resize(count);
    return paths;
}

zqpaths::EncodedScan scanOfDirectories() {
    zqpaths::ScanWriter scan({"/usr", 1, {{"hidden", ""}}});
    scan.add({.subdirectoryCount = 2});
    scan.add({.name = "bin", .stamp = {1, 100, 5, 6}});
    scan.add({.name = "lib", .stamp = {1, 101, 5, 6}});
    return std::move(scan).finish();
}

std::string setFile(std::size_t count, zqpaths::PathSetWriter::Form form, bool hasBlocks) {
    using zqpaths::PathSetWriter;
    const std::string file = folder().pathOf("seed.zqp");
    const auto write = [&](PathSetWriter::Mode mode, const Inputs& added) {
        PathSetWriter writer(file, mode, form);
        for (const std::string& path : added) writer.add(path);
        if (hasBlocks) {
            for (std::uint64_t number = 1; number <= writer.size(); number += 3)
                writer.markGone(number);
            recordScans(writer, {scanOfDirectories()});
        }
        writer.commit();
    };
    write(PathSetWriter::Mode::kReplace, paths(count));
    if (hasBlocks) write(PathSetWriter::Mode::kAppend, {"a/of/its/own", "a/last/one"});
    return contentOf(file);
}

Inputs setFiles() {
    using Form = zqpaths::PathSetWriter::Form;
    return {setFile(0, Form::kImage, false), setFile(1, Form::kImage, false),
            setFile(7, Form::kImage, true),  setFile(40, Form::kImage, false),
            setFile(7, Form::kPacked, true), setFile(40, Form::kPacked, false)};
}

/// A path set of the core, with `count` files in some folders.
void fill(compressedpaths::HuffmanPathTree& set, std::size_t count) {
    compressedpaths::makeCode(set, u"abcdefgh");
    std::vector<std::vector<std::u16string>> folders;
    std::vector<std::vector<std::u16string>> files;
    for (std::size_t i = 0; i < count; ++i) {
        folders.push_back({u"ab", std::u16string(1 + i % 3, u'c')});
        files.push_back({u"d", std::u16string(1 + i % 7, static_cast<char16_t>(u'a' + i % 8))});
    }
    set.generateCodeAsyncAndAddPaths(folders, files);
}

Inputs images() {
    Inputs images;
    for (const std::size_t count : {0U, 1U, 5U, 60U}) {
        compressedpaths::HuffmanPathTree set;
        fill(set, count);
        std::ostringstream out;
        set.writeImage(out);
        images.push_back('\1' + out.str());  // with its sums put right
    }
    return images;
}

/// As the target reads them: the form, the number of characters, these, and the bytes.
Inputs savedForms() {
    Inputs forms;
    for (const bool isCompressed : {false, true}) {
        compressedpaths::HuffmanPathTree set;
        fill(set, 20);
        compressedpaths::Bytes bytes;
        set.serialize(bytes, isCompressed);
        std::string form(1, isCompressed ? '\1' : '\0');
        const std::u16string characters = set.getTreeString();
        form.push_back(static_cast<char>(characters.size()));
        for (const char16_t character : characters) {
            form.push_back(static_cast<char>(character & 0xFF));
            form.push_back(static_cast<char>(character >> 8));
        }
        forms.push_back(form.append(bytes.begin(), bytes.end()));
    }
    return forms;
}

/// As the target reads them: what is to be done with the bytes, and these.
Inputs archives() {
    Inputs archives;
    for (const fuzzing::ArchiveKind& kind : fuzzing::kArchiveKinds)
        archives.push_back(
            std::string{'\0', '\7'} +
            fuzzing::madeArchive(kind, {"a", "b/c", "caf\xC3\xA9", std::string(120, 'd') + "/e"}));
    return archives;
}

/// As the target reads them: the format, how it is cut, and the lines.
Inputs listings() {
    const Inputs texts{
        "a/b\n/c d\n",
        std::string("a/b\0c\nd\0", 8),
        "2023-05-01 12:34:56       1234 dir/a b.txt\n\nTotal Objects: 1\n   Total Size: 1234\n",
        "2023-05-01 12:34         1234  s3://bucket/a.txt\n             DIR  s3://bucket/b/\n",
        "     1234 dir/a b.txt\n       -1 c\n",
        "gs://bucket/dir/:\n      1234  2023-05-01T12:34:56Z  gs://bucket/dir/a.txt\n"
        "TOTAL: 1 objects, 1234 bytes (1.21 KiB)\n",
        "{\"path\": \"a/\\u00e9\", \"size\": 3}\n\n{\"a\": [1], \"path\": \"b\"}\n"};
    Inputs inputs;
    for (std::size_t format = 0; format < texts.size(); ++format)
        inputs.push_back(std::string{static_cast<char>(format), '\0', '\5'} + texts[format]);
    return inputs;
}

Inputs withFlag(Inputs inputs) {
    for (std::string& input : inputs) input.insert(input.begin(), '\1');
    return inputs;
}

/// Choices at random, the same each time.
Inputs choices() {
    std::mt19937 random(1);
    Inputs inputs;
    for (std::size_t size = 16; size <= 128; size *= 2) {
        std::string input(size, '\0');
        std::ranges::generate(input, [&] { return static_cast<char>(random()); });
        inputs.push_back(input);
    }
    return inputs;
}

void write(const std::filesystem::path& seeds, const Inputs& inputs) {
    std::filesystem::create_directories(seeds);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        std::ofstream out(seeds / ("seed-" + std::to_string(i)), std::ios::binary);
        if (!out.write(inputs[i].data(), static_cast<std::streamsize>(inputs[i].size())).flush())
            throw std::runtime_error("cannot write to " + seeds.string());
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::map<std::string, std::function<Inputs()>> makers{
        {"whole_set_file", setFiles},
        {"set_file", [] { return withFlag(setFiles()); }},
        {"image", images},
        {"path_set", savedForms},
        {"archives", archives},
        {"listings", listings}};
    for (int i = 2; i < argumentCount; ++i) {
        const auto maker = makers.find(arguments[i]);
        write(std::filesystem::path(arguments[1]) / arguments[i],
              maker == makers.end() ? choices() : maker->second());
    }
    return 0;
}
