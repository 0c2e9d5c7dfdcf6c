#include "tools/zqpaths-mpi/input/PieceMaking.hpp"

#include <memory>
#include <optional>

#include "tools/zqpaths-mpi/communication/MessageBytes.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "zqpaths/PathSetWriter.hpp"
#include "zqpaths/file/PendingFile.hpp"

namespace zqpaths::program::mpi {
namespace {

constexpr std::uint64_t kPathsBetweenCounts = 4096;

void putPart(MessageWriter& writer, const SourcePart& part, const FileStamp& stamp) {
    writer.number(part.source);
    writer.number(part.bytes.begin);
    writer.number(part.bytes.end);
    writer.number(part.directory.isDeep ? 1 : 0);
    writer.number(part.directory.names.size());
    for (const std::string& name : part.directory.names) writer.text(name);
    writer.number(stamp.size);
    writer.number(static_cast<std::uint64_t>(stamp.changed));
}

void takePart(MessageReader& reader, DealtPiece& piece) {
    SourcePart part;
    part.source = reader.number();
    part.bytes.begin = reader.number();
    part.bytes.end = reader.number();
    part.directory.isDeep = reader.number() != 0;
    for (std::uint64_t left = reader.number(); left > 0; --left)
        part.directory.names.emplace_back(reader.text());
    piece.parts.push_back(std::move(part));
    const std::uint64_t size = reader.number();
    piece.stamps.push_back({size, static_cast<std::int64_t>(reader.number())});
}

void requireUnchanged(const std::string& file, const FileStamp& stamp) {
    if (stampOfFile(file) != stamp) throw failureAt(file, "has changed since the work began");
}

}  // namespace

std::string encodePiece(const DealtPiece& piece) {
    MessageWriter writer;
    writer.text(piece.setFile);
    writer.text(piece.reportFile);
    writer.number(piece.weight);
    for (std::size_t i = 0; i < piece.parts.size(); ++i)
        putPart(writer, piece.parts[i], piece.stamps.at(i));
    return writer.take();
}

DealtPiece decodePiece(std::string_view bytes) {
    MessageReader reader(bytes);
    DealtPiece piece;
    piece.setFile = reader.text();
    piece.reportFile = reader.text();
    piece.weight = reader.number();
    while (!reader.isAtEnd()) takePart(reader, piece);
    return piece;
}

PieceReport PieceMaking::make(const DealtPiece& piece) {
    // Here and not before: the folder is there when a piece is dealt.
    options_.notTaken.clear();
    if (std::optional<FileIdentity> folder = fileAt(folder_))
        options_.notTaken.push_back(*std::move(folder));

    PathSetWriter writer(piece.setFile, PathSetWriter::Mode::kReplace);
    std::uint64_t uncounted = 0;
    const auto count = [&] {
        listener_.onPaths(uncounted);
        uncounted = 0;
    };
    const auto add = [&](std::string_view path) {
        writer.add(path);
        if (++uncounted == kPathsBetweenCounts) count();
    };
    PieceReport report;
    const std::uint64_t weight = piece.weight / piece.parts.size();
    for (std::size_t i = 0; i < piece.parts.size(); ++i)
        report.source += readPart(piece.parts[i], piece.stamps[i], add, weight);
    count();
    report.pathCount = writer.size();
    // A set file without a report would tell nothing of what could not be read.
    writeInPlace(piece.reportFile, encodeReport(report));
    if (report.pathCount > 0) writer.commit();
    listener_.onWeight(piece.weight - weight * piece.parts.size());
    return report;
}

SourceReport PieceMaking::readPart(const SourcePart& part, const FileStamp& stamp,
                                   const std::function<void(std::string_view path)>& visitor,
                                   std::uint64_t weight) {
    const std::string& name = options_.directories.at(part.source);
    const bool isFile = kindOf(name, options_) != SourceKind::kDirectory;
    if (isFile) requireUnchanged(name, stamp);
    const std::unique_ptr<PathSource> source =
        openPart(options_, part, set_, listener_.onUnreadable);
    std::uint64_t toldWeight = 0;
    std::uint64_t untold = 0;
    SourceReport report = source->visit([&](std::string_view path) {
        visitor(path);
        if (++untold < kPathsBetweenCounts) return;
        untold = 0;
        const double done = source->partGiven().value_or(0);
        const auto weightDone = static_cast<std::uint64_t>(done * static_cast<double>(weight));
        if (weightDone <= toldWeight) return;
        listener_.onWeight(weightDone - toldWeight);
        toldWeight = weightDone;
    });
    if (isFile) requireUnchanged(name, stamp);
    listener_.onWeight(weight - toldWeight);
    return report;
}

}  // namespace zqpaths::program::mpi
