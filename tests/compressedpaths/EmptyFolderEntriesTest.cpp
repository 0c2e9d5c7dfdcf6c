// Folder entries without files, which say something of the trie all the same.

#include <gtest/gtest.h>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {
namespace {

using Texts = std::vector<std::u16string>;

/// The components of the path with a number.
Texts pathWithNumber(HuffmanPathTree& set, double number) {
    std::vector<Path> folders;
    std::vector<Path> files;
    set.getPath(folders, files, {number});
    Texts texts;
    for (const Bytes& code : folders.at(0)) texts.push_back(set.generatePathFrom(code));
    texts.push_back(set.generatePathFrom(files.at(0).at(0)));
    return texts;
}

TEST(EmptyFolderEntries, leaveFilesWhereTheyAreThatBecameFoldersByThem) {
    HuffmanPathTree set;
    const std::vector<double> frequencies{1, 1, 1};
    set.deflateHuffman(frequencies.data(), u"abc");
    std::vector<Texts> folders{{u"a"}, {u"a"}, {u"a", u"b", u"c"}};
    std::vector<Texts> files{{}, {u"b"}, {}};
    set.generateCodeAsyncAndAddPaths(folders, files);
    EXPECT_EQ(pathWithNumber(set, 1), (Texts{u"a", u"b"}));

    std::vector<std::uint8_t> bytes;
    set.serialize(bytes, true);
    HuffmanPathTree loaded;
    loaded.deserialize(bytes, true);
    loaded.inflateHuffman(set.getTreeString());
    EXPECT_EQ(pathWithNumber(loaded, 1), (Texts{u"a", u"b"}));
}

}  // namespace
}  // namespace compressedpaths
