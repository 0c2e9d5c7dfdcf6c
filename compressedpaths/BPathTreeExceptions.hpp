#pragma once
// What the trie of coded components refuses. The texts are fixed; docs/errors.md says when each is
// met and what to do.

#include <exception>

namespace compressedpaths {

class UnknownNodeTypeException : public std::exception {
public:
    const char* what() const noexcept override {
        return "Cannot determine the node type for the given value.";
    }
};

class NoMorePathException : public std::exception {
public:
    const char* what() const noexcept override { return "No more paths to provide."; }
};

class NoTreeToTraverseException : public std::exception {
public:
    const char* what() const noexcept override {
        return "Cannot traverse an empty tree for a path.";
    }
};

class EmptyPathForTraverseException : public std::exception {
public:
    const char* what() const noexcept override {
        return "Cannot traverse an tree for an empty path track.";
    }
};

/// A position in a track is beyond the children of its node.
class InvalidTrackException : public std::exception {
public:
    const char* what() const noexcept override { return "The track leads to no node of the tree."; }
};

/// A file number is 0 or beyond the children of its folder, or the lists given are of unequal
/// length.
class InvalidFileNumberException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The file number leads to no file of the folder.";
    }
};

/// The structure bytes or the keys end while nodes of the trie are still missing.
class IncompleteTrieException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The structure bytes and keys end before the tree is complete.";
    }
};

/// More names or folders than 31-bit offsets reach.
class SetTooLargeException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The set would be larger than its offsets reach.";
    }
};

/// The bytes are those of no image, or lead outside it.
class InvalidImageException : public std::exception {
public:
    const char* what() const noexcept override { return "The image of the set is damaged."; }
};

}  // namespace compressedpaths
