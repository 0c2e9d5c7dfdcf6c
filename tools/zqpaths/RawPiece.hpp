#pragma once
// A saved piece of a set as a file of its own, for other hosts: nothing but the elements of an
// array, each with its lowest byte first.

#include <string>

#include "host/runtime/Arrays.hpp"

namespace zqpaths {

/// Writes the elements; a file that is there is replaced when the new one is whole. Throws Failure
/// kFailed.
void writeRawPiece(const std::string& path, const kxArray* array);

/// A row of characters, or a column of bytes. Throws Failure: kFailed if the file cannot be read,
/// kDamaged if it does not hold whole characters.
korvex::Array readRawCharacters(const std::string& path);
korvex::Array readRawBytes(const std::string& path);

}  // namespace zqpaths
