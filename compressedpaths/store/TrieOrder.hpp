#pragma once
// Going through a trie in pre-order: a node, then what is in it, children in their order. The stack
// is the caller's memory, not the call stack: depth comes from input.
//
//     forEachNode(arena, [&](const PathArena::Cursor& child, std::uint32_t childCount, bool isLast)
//     {
//         ...  // childCount is 0 of a leaf
//     });

#include <cstdint>
#include <utility>
#include <vector>

#include "compressedpaths/store/PathArena.hpp"

namespace compressedpaths {

template <class Visit>
void forEachNode(const PathArena& arena, Visit visit) {
    struct Level {
        PathArena::Cursor child;
        std::uint32_t left;  // children from this one on
    };
    std::vector<Level> open;
    const auto enter = [&](PathArena::Id folder, std::uint32_t childCount) {
        if (childCount > 0) open.push_back({arena.firstChild(folder), childCount});
    };
    enter(PathArena::kRoot, arena.childCount(PathArena::kRoot));
    while (!open.empty()) {
        Level& level = open.back();
        if (level.child.isFile() && !arena.hasFormerFiles(level.child.run)) {
            // Most nodes are files that follow one another.
            while (level.left > 1 && level.child.index + 1 < level.child.run.count) {
                visit(std::as_const(level.child), 0, false);
                arena.advance(level.child);
                --level.left;
            }
        }
        const PathArena::Cursor child = level.child;
        const bool isLast = --level.left == 0;
        if (isLast)
            open.pop_back();
        else
            arena.advance(level.child);
        const PathArena::Id folder = arena.folderAt(child);
        const std::uint32_t childCount = folder == PathArena::kNone ? 0 : arena.childCount(folder);
        visit(child, childCount, isLast);
        if (childCount > 0) enter(folder, childCount);
    }
}

}  // namespace compressedpaths
