#include "compressedpaths/sixpacks/CompressedBlocks.hpp"

#include <zlib.h>

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace compressedpaths::sixpacks {
namespace {

constexpr std::size_t kPieceSize = std::size_t{1} << 18;
// A body grows in few steps: each copies what there is. It may be far smaller than what is stated.
constexpr std::size_t kFirstSize = std::size_t{1} << 12;
constexpr std::size_t kGrowth = 8;
constexpr std::size_t kMaxInput = std::size_t{1} << 24;  // at a time; zlib counts in 32 bits

}  // namespace

std::vector<std::uint8_t> compressUint8(std::vector<std::uint8_t>& bytes) {
    std::vector<std::uint8_t> stream(compressBound(bytes.size()));
    uLongf length = stream.size();
    // The buffer is as large as zlib asks for, so nothing but memory can be missing.
    if (compress2(stream.data(), &length, bytes.data(), bytes.size(), Z_BEST_COMPRESSION) != Z_OK)
        throw std::bad_alloc();
    stream.resize(length);
    return stream;
}

struct BlockCompressor::Stream {
    z_stream state{};

    Stream() {
        if (deflateInit(&state, Z_BEST_COMPRESSION) != Z_OK) throw std::bad_alloc();
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;
    ~Stream() { deflateEnd(&state); }
};

BlockCompressor::BlockCompressor() : stream_(std::make_unique<Stream>()) {}

BlockCompressor::~BlockCompressor() = default;

void BlockCompressor::append(std::span<const std::uint8_t> piece) {
    for (; piece.size() > kMaxInput; piece = piece.subspan(kMaxInput))
        deflatePiece(piece.first(kMaxInput), Z_NO_FLUSH);
    if (!piece.empty()) deflatePiece(piece, Z_NO_FLUSH);
}

void BlockCompressor::deflatePiece(std::span<const std::uint8_t> piece, int flush) {
    z_stream& state = stream_->state;
    state.next_in = const_cast<Bytef*>(piece.data());  // zlib does not write there
    state.avail_in = static_cast<uInt>(piece.size());
    int status = Z_OK;
    do {
        if (state.avail_out == 0) {
            pieces_.emplace_back(kPieceSize);
            state.next_out = pieces_.back().data();
            state.avail_out = kPieceSize;
        }
        const uInt room = state.avail_out;
        status = deflate(&state, flush);
        size_ += room - state.avail_out;
    } while (status == Z_OK && state.avail_out == 0);  // else it has taken the whole piece
}

void BlockCompressor::appendBlockTo(std::vector<std::uint8_t>& out) {
    deflatePiece({}, Z_FINISH);
    out.reserve(out.size() + size_);
    std::size_t left = size_;
    for (; !pieces_.empty(); pieces_.pop_front()) {
        const auto count = static_cast<std::ptrdiff_t>(std::min(left, kPieceSize));
        out.insert(out.end(), pieces_.front().begin(), pieces_.front().begin() + count);
        left -= static_cast<std::size_t>(count);
    }
}

std::vector<std::uint8_t> decompressUint8(std::vector<std::uint8_t>::iterator begin,
                                          std::uint64_t compressedLength,
                                          std::uint64_t uncompressedLength) {
    std::vector<std::uint8_t> bytes(uncompressedLength);
    uLongf length = bytes.size();
    // What is wrong with the stream is not reported; lack of memory is no property of it.
    if (uncompress(bytes.data(), &length, std::to_address(begin), compressedLength) == Z_MEM_ERROR)
        throw std::bad_alloc();
    bytes.resize(length);
    return bytes;
}

InflatedBlock inflateBlock(std::span<const std::uint8_t> block, std::uint64_t maxSize) {
    struct Inflating {
        z_stream state{};

        Inflating() {
            if (inflateInit(&state) != Z_OK) throw std::bad_alloc();
        }
        Inflating(const Inflating&) = delete;
        Inflating& operator=(const Inflating&) = delete;
        ~Inflating() { inflateEnd(&state); }
    } inflating;
    z_stream& state = inflating.state;

    std::vector<std::uint8_t> bytes;
    std::size_t size = 0;
    int status = Z_OK;
    while (status == Z_OK) {
        if (state.avail_in == 0) {
            const std::size_t count = std::min(block.size(), kMaxInput);
            state.next_in = const_cast<Bytef*>(block.data());  // zlib does not write there
            state.avail_in = static_cast<uInt>(count);
            block = block.subspan(count);
        }
        if (size == bytes.size()) {
            const std::uint64_t grown = bytes.empty() ? kFirstSize : kGrowth * bytes.size();
            bytes.resize(static_cast<std::size_t>(std::min(grown, maxSize)));
        }
        const std::size_t room = std::min(bytes.size() - size, kMaxInput);
        std::uint8_t nothing = 0;  // zlib refuses a null pointer even where no byte is to come
        state.next_out = room > 0 ? bytes.data() + size : &nothing;
        state.avail_out = static_cast<uInt>(room);
        status = inflate(&state, Z_NO_FLUSH);
        size += room - state.avail_out;
    }
    if (status == Z_MEM_ERROR) throw std::bad_alloc();
    bytes.resize(size);
    return {std::move(bytes), status == Z_STREAM_END};
}

}  // namespace compressedpaths::sixpacks
