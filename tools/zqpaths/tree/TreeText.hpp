#pragma once
// TreeText draws the lines of a FolderTree for people: how many files, which share of all, and the
// name at its place in the tree.
//
//     35  100.0 %  ████████████████  /usr
//     28   80.0 %  ████████████▊     ├── share
//      7   20.0 %  ███▎              └── … 2 more folders
//
// Threads: belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/zqpaths/output/NameColours.hpp"
#include "tools/zqpaths/output/TextDrawing.hpp"
#include "tools/zqpaths/tree/FolderTree.hpp"

namespace zqpaths::program {

class TreeText {
public:
    /// `topName` stands for a top without a name; `whole` is how many files there are below the
    /// top. No line is wider than `width` cells, if there is one.
    TreeText(std::string topName, std::uint64_t whole, std::optional<std::size_t> width,
             const DrawingStyle& style, NameColours colours);

    /// The line with its end. Lines come in the order of FolderTree.
    std::string lineOf(const TreeLine& line);

private:
    std::string figuresOf(const TreeLine& line) const;
    std::string branchesOf(const TreeLine& line);
    std::string nameOf(const TreeLine& line) const;
    const std::string& colourOf(const TreeLine& line) const;

    std::string topName_;
    std::uint64_t whole_;
    std::optional<std::size_t> width_;
    DrawingStyle style_;
    NameColours colours_;
    std::size_t figureWidth_;
    std::size_t barWidth_;
    std::vector<bool> isLast_;  // the line above of each level
};

}  // namespace zqpaths::program
