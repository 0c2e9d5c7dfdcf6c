#pragma once
// Path sets that tests build from text and read back as text:
//
//     HuffmanPathTree set;
//     buildSet(set, {{{u"a"}, {u"b", u"c"}}});           // the folder a with the files b and c
//     EXPECT_EQ(pathsByNumber(set, 2), (TextPaths{{u"a", u"b"}, {u"a", u"c"}}));
//     reload(set, loaded);

#include <string>
#include <utility>
#include <vector>

#include "compressedpaths/HuffmanPathTree.hpp"

namespace compressedpaths {

using Names = std::vector<std::u16string>;
using TextPath = std::vector<std::u16string>;  // folder components, then the file name
using TextPaths = std::vector<TextPath>;

struct TextEntry {
    Names folder;
    Names files;
};
using TextEntries = std::vector<TextEntry>;

/// What the code of every set built here can write.
inline const std::u16string kAlphabet = u"abcdefghijklmnopqrstuvwxyz0123456789._-/";

/// A code in which the characters get the frequencies 1, 2, 3 and so on.
inline void makeCode(HuffmanPathTree& set, const std::u16string& characters = kAlphabet) {
    std::vector<double> frequencies;
    for (std::size_t i = 1; i <= characters.size(); ++i)
        frequencies.push_back(static_cast<double>(i));
    set.deflateHuffman(frequencies.data(), characters);
}

inline void addBatch(HuffmanPathTree& set, const TextEntries& entries) {
    std::vector<Names> folders;
    std::vector<Names> files;
    for (const TextEntry& entry : entries) {
        folders.push_back(entry.folder);
        files.push_back(entry.files);
    }
    set.generateCodeAsyncAndAddPaths(folders, files);
}

/// Adds one path on its own, not as a file of a folder entry.
inline void addSinglePath(HuffmanPathTree& set, const TextPath& path) {
    Path coded;
    for (const std::u16string& component : path) coded.push_back(set.generateCodeFor(component));
    set.addPathToBTree(coded);
}

inline void buildSet(HuffmanPathTree& set, const TextEntries& entries) {
    makeCode(set);
    addBatch(set, entries);
}

/// The paths of some entries in the order of their numbers.
inline TextPaths pathsOf(const TextEntries& entries) {
    TextPaths paths;
    for (const TextEntry& entry : entries) {
        for (const std::u16string& file : entry.files) {
            paths.push_back(entry.folder);
            paths.back().push_back(file);
        }
    }
    return paths;
}

inline TextPath decoded(const HuffmanPathTree& set, const Path& coded) {
    TextPath path;
    for (const Bytes& component : coded) path.push_back(set.generatePathFrom(component));
    return path;
}

/// The paths with the requested numbers, one after another, whatever groups they come in.
inline TextPaths pathsNumbered(HuffmanPathTree& set, const std::vector<double>& numbers) {
    std::vector<Path> folders;
    std::vector<Path> files;
    set.getPath(folders, files, numbers);
    TextPaths paths;
    for (std::size_t group = 0; group < files.size(); ++group) {
        for (const Bytes& file : files[group]) {
            paths.push_back(decoded(set, folders.at(group)));
            paths.back().push_back(set.generatePathFrom(file));
        }
    }
    return paths;
}

/// The paths 1 to `count`, each asked for on its own.
inline TextPaths pathsByNumber(HuffmanPathTree& set, std::size_t count) {
    TextPaths paths;
    for (std::size_t number = 1; number <= count; ++number) {
        for (TextPath& path : pathsNumbered(set, {static_cast<double>(number)}))
            paths.push_back(std::move(path));
    }
    return paths;
}

/// All paths in the order of the walk, which is started anew.
inline TextPaths walkedPaths(HuffmanPathTree& set) {
    TextPaths paths;
    set.resetPathsToBTree();
    while (set.hasNextPathFromBTree()) {
        Path path;
        set.getNextPathFromBTree(path);
        paths.push_back(decoded(set, path));
    }
    return paths;
}

inline Bytes savedForm(HuffmanPathTree& set, bool compress = false) {
    Bytes bytes;
    set.serialize(bytes, compress);
    return bytes;
}

inline void loadForm(HuffmanPathTree& set, Bytes bytes, const std::u16string& treeString,
                     bool compressed = false) {
    set.deserialize(bytes, compressed);
    set.inflateHuffman(treeString);
}

/// Saves `set` and loads it into the new set `loaded`.
inline void reload(HuffmanPathTree& set, HuffmanPathTree& loaded, bool compress = false) {
    loadForm(loaded, savedForm(set, compress), set.getTreeString(), compress);
}

}  // namespace compressedpaths
