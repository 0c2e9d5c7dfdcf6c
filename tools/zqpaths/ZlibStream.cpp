#include "tools/zqpaths/ZlibStream.hpp"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <string>

#include "tools/zqpaths/Failure.hpp"

namespace zqpaths {
namespace {

// The most that a byte of a stream inflates to: deflate copies 258 bytes for two bits.
constexpr std::uint64_t kLargestExpansion = 1'032;
constexpr std::size_t kMostAtOnce = std::numeric_limits<uInt>::max();

class Inflation {
public:
    explicit Inflation(std::span<const std::uint8_t> stream) : rest_(stream) {
        if (inflateInit(&state_) != Z_OK) throw std::bad_alloc();
    }
    Inflation(const Inflation&) = delete;
    Inflation& operator=(const Inflation&) = delete;
    ~Inflation() { inflateEnd(&state_); }

    /// Fills `out`, or what the stream still has of it, and returns how many bytes that are.
    std::size_t read(std::span<std::uint8_t> out) {
        std::size_t filled = 0;
        while (filled < out.size() && !isAtEnd_) {
            refill();
            const std::size_t wanted = std::min(out.size() - filled, kMostAtOnce);
            state_.next_out = out.data() + filled;
            state_.avail_out = static_cast<uInt>(wanted);
            const int result = inflate(&state_, Z_NO_FLUSH);
            filled += wanted - state_.avail_out;
            isAtEnd_ = result == Z_STREAM_END;
            if (result == Z_MEM_ERROR) throw std::bad_alloc();
            if (result != Z_OK && result != Z_STREAM_END) break;  // broken, or no bytes are left
        }
        return filled;
    }

    bool isAtEnd() const noexcept { return isAtEnd_; }
    std::uint64_t bytesTaken() const noexcept { return state_.total_in; }

private:
    void refill() {
        if (state_.avail_in > 0) return;
        const std::size_t count = std::min(rest_.size(), kMostAtOnce);
        state_.next_in = const_cast<Bytef*>(rest_.data());  // zlib only reads there
        state_.avail_in = static_cast<uInt>(count);
        rest_ = rest_.subspan(count);
    }

    z_stream state_{};
    std::span<const std::uint8_t> rest_;
    bool isAtEnd_ = false;
};

}  // namespace

std::vector<std::uint8_t> inflateStream(std::span<const std::uint8_t> stream,
                                        std::uint64_t byteSize) {
    if (byteSize / kLargestExpansion > stream.size())
        throw Failure(ExitStatus::kDamaged, "damaged: a stream of " +
                                                std::to_string(stream.size()) +
                                                " bytes cannot hold " + std::to_string(byteSize));
    std::vector<std::uint8_t> bytes(byteSize);
    Inflation inflation(stream);
    const std::size_t count = inflation.read(bytes);
    if (count < byteSize && !inflation.isAtEnd())
        throw Failure(ExitStatus::kDamaged, "damaged: the stream breaks at its byte " +
                                                std::to_string(inflation.bytesTaken()) +
                                                ", after " + std::to_string(count) + " of " +
                                                std::to_string(byteSize) + " bytes");
    bytes.resize(count);
    return bytes;
}

std::vector<std::uint64_t> deflatedSizes(std::span<const std::uint8_t> stream,
                                         std::span<const std::uint64_t> byteSizes) {
    std::array<std::uint8_t, 65'536> passedOver{};
    Inflation inflation(stream);
    std::vector<std::uint64_t> sizes;
    for (std::uint64_t left : byteSizes) {
        const std::uint64_t begin = inflation.bytesTaken();
        while (left > 0)
            left -= inflation.read(
                std::span(passedOver).first(std::min<std::uint64_t>(left, passedOver.size())));
        sizes.push_back(inflation.bytesTaken() - begin);
    }
    return sizes;
}

}  // namespace zqpaths
