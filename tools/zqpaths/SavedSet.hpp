#pragma once
// A set that is saved in a file, opened to be read.

#include <string>

#include "tools/zqpaths/PathSet.hpp"
#include "tools/zqpaths/SetFile.hpp"

namespace zqpaths {

/// The set in a file. Throws Failure as loadFields and restoreSet do.
PathSet openSet(const std::string& file);

/// What is saved of the set in a file: PathSet::fields(). Throws Failure as SetFile::load does, and
/// kFailed if the file holds an object of another class.
korvex::Array loadFields(const std::string& file);

/// The same of a content that was loaded from the file.
korvex::Array fieldsOf(const std::string& file, SetFile::Content content);

/// The set of these fields. Throws Failure as PathSet::restored does, the file in front.
PathSet restoreSet(const std::string& file, korvex::Array fields);

}  // namespace zqpaths
