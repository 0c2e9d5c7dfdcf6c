#pragma once
// ExclusionRules tell what of a directory tree is left out, by patterns as gitignore has them; see
// ExclusionPattern.hpp for what one matches. The last pattern that matches decides, so that one
// with a '!' takes back what others before it leave out:
//
//     const ExclusionRules rules({"*.o", "!keep.o", "/build/"});
//     rules.excludes("src/a.o", EntryKind::kOther);     // true
//     rules.excludes("build", EntryKind::kDirectory);   // true
//
// What is in a directory that is left out is not looked at; ExcludedPaths.hpp asks about the
// directories that lead to a path.
//
// Threads: rules never change; any number of threads may ask them.

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zqpaths/Export.hpp"

namespace zqpaths {

/// The patterns of a file that is written as gitignore is: a line each, less spaces at its end that
/// no backslash stands before; empty lines and those that begin with '#' are none. O(bytes).
ZQPATHS_EXPORT std::vector<std::string> exclusionPatterns(std::string_view text);

enum class EntryKind { kDirectory, kOther };

class ZQPATHS_EXPORT ExclusionRules {
public:
    /// Throws Error kWrongUse if the patterns are too many or too large.
    explicit ExclusionRules(const std::vector<std::string>& patterns);
    ExclusionRules(ExclusionRules&&) noexcept;
    ExclusionRules& operator=(ExclusionRules&&) noexcept;
    ~ExclusionRules();

    bool isEmpty() const noexcept;

    /// Whether something is left out of a directory that itself is not. `path` leads to it from the
    /// root of the tree: names with a separator between them. O(bytes), whatever the patterns are.
    /// Throws Error kWrongUse if they need too much memory.
    bool excludes(std::string_view path, EntryKind kind) const;

private:
    struct Compiled;
    std::unique_ptr<const Compiled> compiled_;  // none without patterns
};

}  // namespace zqpaths
