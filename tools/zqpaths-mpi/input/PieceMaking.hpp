#pragma once
// PieceMaking makes the set file of a piece of work, on whichever rank is dealt it:
//
//     PieceMaking making(options, "all.zqs", "all.zqs.d", listener);
//     const PieceReport report = making.make(decodePiece(piece.description));
//
// Threads: an object belongs to one thread at a time.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/zqpaths-mpi/input/InputPlan.hpp"
#include "tools/zqpaths-mpi/input/PieceReport.hpp"

namespace zqpaths::program::mpi {

/// All that a rank is told of a piece.
struct DealtPiece {
    std::string setFile;
    std::string reportFile;
    std::uint64_t weight = 0;
    std::vector<SourcePart> parts{};
    std::vector<FileStamp> stamps{};  // of the sources of the parts
};

std::string encodePiece(const DealtPiece& piece);

/// Throws Failure kFailed for bytes that end too early.
DealtPiece decodePiece(std::string_view bytes);

/// Who is told how far the making is, often; what it throws ends it.
struct MakingListener {
    std::function<void(std::uint64_t paths)> onPaths;    // so many more were added
    std::function<void(std::uint64_t weight)> onWeight;  // so much more of the piece is done
    UnreadableVisitor onUnreadable;
};

class PieceMaking {
public:
    /// What is in `folder`, and the set, is not among the paths of directories.
    PieceMaking(SourceOptions options, std::string set, std::string folder, MakingListener listener)
        : options_(std::move(options)),
          set_(std::move(set)),
          folder_(std::move(folder)),
          listener_(std::move(listener)) {}

    /// Reads the parts, and puts the report and then the set file in their places, each whole or
    /// not at all; without a path no set file. Throws Failure as PathSource does, and for a file
    /// that is not as it was when the work was planned, Error as PathSetWriter, and what the
    /// listener throws.
    PieceReport make(const DealtPiece& piece);

private:
    SourceReport readPart(const SourcePart& part, const FileStamp& stamp,
                          const std::function<void(std::string_view path)>& visitor,
                          std::uint64_t weight);

    SourceOptions options_;
    std::string set_;
    std::string folder_;
    MakingListener listener_;
};

}  // namespace zqpaths::program::mpi
