#pragma once
// What coding and the path set refuse. The texts are fixed; docs/errors.md says when each is met
// and what to do.

#include <exception>

namespace compressedpaths {

class NoCodeForEmptyString : public std::exception {
public:
    const char* what() const noexcept override { return "No code for an empty string."; }
};

class CodeNotFoundException : public std::exception {
public:
    const char* what() const noexcept override { return "Code for the character not found."; }
};

class AlphabetTooSmallException : public std::exception {
public:
    const char* what() const noexcept override {
        return "An alphabet needs at least two characters.";
    }
};

class CodingTreeExistsException : public std::exception {
public:
    const char* what() const noexcept override { return "The coding tree has been built already."; }
};

/// The shape ends early, or there are fewer characters than leaves.
class IncompleteCodingTreeException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The shape or the characters of the coding tree end before the tree is complete.";
    }
};

class CodeWordsTooLongException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The code words of the coding tree are too long.";
    }
};

/// There is no coding tree, or only a single leaf, which no bit leads to.
class NoUsableCodingTreeException : public std::exception {
public:
    const char* what() const noexcept override {
        return "There is no usable coding tree to decode with.";
    }
};

class InvalidCodeException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The code bytes lead to no character of the coding tree.";
    }
};

/// Not a whole number from 1 to the number of paths, or beyond the entries of a set without totals.
class InvalidPathNumberException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The path number is not a whole number from 1 to the number of paths.";
    }
};

class UnequalBatchListsException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The batch has different numbers of folders and file lists.";
    }
};

class IncompleteBatchException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The batch has not been coded as a whole.";
    }
};

/// A saved set states more bytes than its zlib stream can hold.
class ImplausibleLengthException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The stated length is larger than the compressed bytes can hold.";
    }
};

/// The compressed body is cut off, or zlib's checksum of it does not hold.
class DamagedBlockException : public std::exception {
public:
    const char* what() const noexcept override { return "The compressed bytes are damaged."; }
};

/// The running totals of paths in a saved set descend.
class DescendingPathTotalsException : public std::exception {
public:
    const char* what() const noexcept override {
        return "The running totals of the paths descend.";
    }
};

/// The stream that an image was written to has failed.
class ImageNotWrittenException : public std::exception {
public:
    const char* what() const noexcept override { return "The image could not be written."; }
};

}  // namespace compressedpaths
