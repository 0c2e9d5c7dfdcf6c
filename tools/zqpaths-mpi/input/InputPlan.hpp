#pragma once
// InputPlan is how input is cut into pieces of work, each of which becomes a set file:
//
//     const InputPlan plan = planInput(options, {}, "all.zqs");
//     for (const InputPiece& piece : plan.pieces) ...
//
// A piece is some neighbouring parts: ranges of files of lines, archives, directories. Small ones
// are put together up to the size of a piece, large files and trees are cut into several. Pieces
// depend on the input and its options alone, so that any number of processes makes the same files.
//
// Threads: values, and a free function without state.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/zqpaths/arguments/SharedOptions.hpp"
#include "tools/zqpaths/sources/PathSource.hpp"

namespace zqpaths::program::mpi {

/// What a file of lines or an archive is told by while work on it goes on; of a directory nothing.
struct FileStamp {
    std::uint64_t size = 0;
    std::int64_t changed = 0;  // nanoseconds since 1970

    bool operator==(const FileStamp&) const = default;
};

/// As the file is now. Throws Failure kFailed if it is not there, or is no regular file, of which
/// alone many processes can read their parts.
FileStamp stampOfFile(const std::string& path);

struct InputSource {
    std::string name;
    SourceKind kind;
    FileStamp stamp{};
};

struct InputPiece {
    std::vector<SourcePart> parts;
    std::uint64_t weight = 0;  // bytes to be read, as far as that is known
};

struct InputPlan {
    std::uint64_t pieceSize = 0;  // bytes
    std::vector<InputSource> sources;
    std::vector<InputPiece> pieces;
};

/// Without a size, pieces are a thousandth of the input, within bounds: so small that many
/// processes have work, so large that a set file is worth its name. Looks at the files and reads
/// the upper levels of directories; files of `set` are not among what is in these. Throws Failure
/// kFailed for what cannot be read or cut.
InputPlan planInput(const SourceOptions& options, std::optional<std::uint64_t> pieceSize,
                    const std::string& set);

}  // namespace zqpaths::program::mpi
