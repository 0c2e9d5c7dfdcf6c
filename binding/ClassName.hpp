#pragma once
// The name of the class in the host.

namespace binding {

inline constexpr const char* kNamespaces[] = {"korvex", "io", "datastore", "internal", "fileset"};
inline constexpr const char* kShortClassName = "HuffmanPaths";
inline constexpr const char* kFullClassName = "korvex.io.datastore.internal.fileset.HuffmanPaths";

}  // namespace binding
