// Archives. Any bytes give the same paths, or the same refusal, in a file and in pieces through a
// pipe, and each path is one that a set takes. An archive that is made of names gives these.
//
// The first byte says whether the bytes are an archive or names to be made one of; inputs that are
// a tar are changed header by header, with the sums of the headers made right again.

#include <optional>
#include <string>
#include <vector>

#include "fuzz/InputScript.hpp"
#include "fuzz/MadeArchive.hpp"
#include "fuzz/Mutation.hpp"
#include "fuzz/PipedInput.hpp"
#include "fuzz/Require.hpp"
#include "fuzz/TemporaryFolder.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/sources/archives/ArchiveSource.hpp"

using namespace zqpaths::program;
using fuzzing::InputScript;
using fuzzing::Random;
using fuzzing::require;
using fuzzing::succeeds;

namespace {

using Paths = std::vector<std::string>;

/// Larger ones would take a pipe more than it holds.
constexpr std::size_t kMaxSize = 60'000;

// --- Changing inputs.

constexpr std::size_t kTarBlockSize = 512;
constexpr std::size_t kTarSumAt = 148;
constexpr std::size_t kTarSumSize = 8;

/// The sum of a header is that of its bytes, with spaces where it stands itself (POSIX, pax).
void putTarSumRight(std::span<std::uint8_t> header) {
    const auto field = header.subspan(kTarSumAt, kTarSumSize);
    std::ranges::fill(field, std::uint8_t{' '});
    unsigned sum = 0;
    for (const std::uint8_t byte : header) sum += byte;
    for (std::size_t i = 6; i > 0; --i, sum /= 8)
        field[i - 1] = static_cast<std::uint8_t>('0' + sum % 8);
    field[6] = 0;
}

// --- Reading them.

/// The paths of an archive; nothing if it is refused.
std::optional<Paths> read(const std::string& file, ArchiveFormat format) {
    Paths paths;
    const bool isTaken = succeeds<Failure>([&] {
        ArchiveSource source(file, format);
        source.visit([&](std::string_view path) { paths.emplace_back(path); });
    });
    return isTaken ? std::optional(paths) : std::nullopt;
}

std::string written(std::string_view bytes) {
    static const fuzzing::TemporaryFolder folder;
    return folder.write("archive", std::as_bytes(std::span(bytes)));
}

void requireSame(std::string_view bytes, std::size_t pieceSize) {
    const std::string file = written(bytes);
    for (const ArchiveFormat format : {ArchiveFormat::kTar, ArchiveFormat::kZip}) {
        const std::optional<Paths> whole = read(file, format);
        if (whole)
            for (const std::string& path : *whole)
                require(!path.empty() && path.find('\0') == std::string::npos,
                        "a set takes the path");
        const fuzzing::PipedInput piped(
            {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, pieceSize);
        require(read("-", format) == whole, "pieces of any size give the same paths");
    }
    std::unique_ptr<ArchiveSource> source;
    succeeds<Failure>([&] { source = ArchiveSource::recognize(file); });
}

// --- Making them.

/// Names without what archives take away or mark directories with.
Paths namesFrom(InputScript& script) {
    Paths names;
    while (!script.isAtEnd() && names.size() < 20) {
        const unsigned length = script.byte();
        const std::vector<std::uint8_t> bytes = script.bytes(1 + length % 24);
        std::string name(bytes.begin(), bytes.end());
        std::erase(name, '\0');
        if (length >= 200) name.insert(0, std::string(length, 'n') + "/");
        if (!name.empty() && !name.ends_with('/')) names.push_back(name);
    }
    return names;
}

/// ASCII alone for zips and the old form of tars, which write names in characters.
bool isPlain(const std::string& name) {
    return std::ranges::all_of(name, [](char byte) { return byte > ' ' && byte < 0x7F; }) &&
           name.find('\\') == std::string::npos;
}

void requireMade(InputScript& script, std::size_t pieceSize) {
    const fuzzing::ArchiveKind& kind =
        fuzzing::kArchiveKinds[script.byte() % fuzzing::kArchiveKinds.size()];
    Paths names = namesFrom(script);
    if (kind.format != ARCHIVE_FORMAT_TAR_GNUTAR)
        std::erase_if(names, [](const std::string& name) { return !isPlain(name); });
    if (names.empty()) return;
    std::string archive;
    if (!succeeds<std::runtime_error>([&] { archive = fuzzing::madeArchive(kind, names); })) return;
    const bool isZip = kind.format == ARCHIVE_FORMAT_ZIP;
    require(read(written(archive), isZip ? ArchiveFormat::kZip : ArchiveFormat::kTar) == names,
            "an archive gives the names that it was made of");
    requireSame(archive, pieceSize);
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    Random random(seed);
    const std::size_t blocks = size < 2 ? 0 : (size - 2) / kTarBlockSize;
    if (blocks == 0 || data[0] % 2 != 0 || fuzzing::below(4, random) == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    const std::span<std::uint8_t> block(data + 2 + fuzzing::below(blocks, random) * kTarBlockSize,
                                        kTarBlockSize);
    fuzzing::mutateInPlace(block, random);
    // Of a block of content or of another format, the sum is as good a change as any.
    if (fuzzing::below(4, random) > 0) putTarSumRight(block);
    return size;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    const bool isMade = script.byte() % 2 == 1;
    const std::size_t pieceSize = 1 + std::size_t{script.byte()} * 16;
    if (isMade) {
        requireMade(script, pieceSize);
    } else {
        const std::vector<std::uint8_t> bytes = script.rest();
        if (bytes.size() <= kMaxSize)
            requireSame({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, pieceSize);
    }
    return 0;
}
