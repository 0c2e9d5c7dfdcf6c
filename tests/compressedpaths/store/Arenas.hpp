#pragma once
// Arenas whose names are words, as tests write and read them:
//
//     PathArena arena;
//     const PathArena::Id folder = makeFolder(arena, PathArena::kRoot, "a");
//     addFiles(arena, folder, {"b", "c"});
//     EXPECT_EQ(listing(arena), "a [ b c ] ");

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "compressedpaths/BPathTree.hpp"
#include "compressedpaths/store/PathArena.hpp"
#include "compressedpaths/store/TrieOrder.hpp"

namespace compressedpaths {

inline Bytes keyOfText(const std::string& text) {
    return {text.begin(), text.end()};
}

inline FlatArray<std::uint8_t> stored(const std::string& text) {
    FlatArray<std::uint8_t> name;
    appendStoredName(keyOfText(text), name);
    return name;
}

inline std::string textOf(const NameView& name) {
    const Bytes key = keyOf(name);
    return {key.begin(), key.end()};
}

inline PathArena::Id makeFolder(PathArena& arena, PathArena::Id parent, const std::string& name) {
    PathArena::Transaction adding(arena);
    const PathArena::Id id = adding.makeFolder(parent, stored(name).values());
    adding.commit();
    return id;
}

/// In a transaction that goes on.
inline PathArena::Appended append(PathArena::Transaction& adding, PathArena::Id folder,
                                  const std::vector<std::string>& names) {
    FlatArray<std::uint8_t> all;
    for (const std::string& name : names) appendStoredName(keyOfText(name), all);
    return adding.appendFiles(folder, all.values(), static_cast<std::uint32_t>(names.size()));
}

inline PathArena::Appended addFiles(PathArena& arena, PathArena::Id folder,
                                    const std::vector<std::string>& names) {
    PathArena::Transaction adding(arena);
    const PathArena::Appended files = append(adding, folder, names);
    adding.commit();
    return files;
}

inline std::vector<std::string> numberedNames(std::size_t count, std::size_t length = 0) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i)
        names.push_back('n' + std::to_string(i) + std::string(length, 'x'));
    return names;
}

/// The names in a folder, a slash after those of folders, on the way from the first to the last.
inline std::vector<std::string> childrenOf(const PathArena& arena, PathArena::Id folder) {
    std::vector<std::string> names;
    std::uint32_t left = arena.childCount(folder);
    if (left == 0) return names;
    for (auto child = arena.firstChild(folder);; arena.advance(child)) {
        EXPECT_EQ(child.position, names.size());
        EXPECT_EQ(arena.positionOf(child.place()), child.position);
        EXPECT_EQ(arena.folderOf(child.place()), folder);
        EXPECT_EQ(arena.childAt(folder, child.position), child.place());
        names.push_back(textOf(arena.nameOf(child)));
        EXPECT_EQ(names.back(), textOf(arena.nameOf(child.place())));
        if (arena.folderAt(child) != PathArena::kNone) names.back() += '/';
        if (--left == 0) break;
    }
    EXPECT_FALSE(arena.childAt(folder, names.size()).has_value());
    return names;
}

/// The whole trie as one line, folders with what is in them in brackets.
inline std::string listing(const PathArena& arena, PathArena::Id folder = PathArena::kRoot) {
    std::string line;
    std::uint32_t left = arena.childCount(folder);
    if (left == 0) return line;
    for (auto child = arena.firstChild(folder);; arena.advance(child)) {
        line += textOf(arena.nameOf(child)) + ' ';
        const PathArena::Id inside = arena.folderAt(child);
        if (inside != PathArena::kNone) line += "[ " + listing(arena, inside) + "] ";
        if (--left == 0) return line;
    }
}

/// How many nodes the way through all of them has. Throws std::length_error if they are more than
/// `most`.
inline std::size_t countNodes(const PathArena& arena, std::size_t most) {
    std::size_t count = 0;
    forEachNode(arena, [&](const PathArena::Cursor&, std::uint32_t, bool) {
        if (++count > most) throw std::length_error("nodes without end");
    });
    return count;
}

inline PathArena::Transaction::Found find(PathArena& arena, PathArena::Id parent,
                                          const std::string& name) {
    PathArena::Transaction adding(arena);
    const auto found = adding.find(parent, stored(name).values());
    adding.commit();
    return found;
}

}  // namespace compressedpaths
