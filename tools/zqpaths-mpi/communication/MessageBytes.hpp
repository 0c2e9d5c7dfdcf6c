#pragma once
// What ranks send each other is bytes: numbers and texts, one after the other, read in the order in
// which they were written.
//
//     MessageWriter writer;
//     writer.number(300);
//     writer.text("usr.zqp");
//     std::string bytes = writer.take();  // AC 02 | 07 75 73 72 2E 7A 71 70
//
//     MessageReader reader(bytes);
//     reader.number();  // 300
//     reader.text();    // "usr.zqp", a view of the bytes
//     reader.isAtEnd();  // true
//
// A number takes seven bits of a byte, the lowest first; the highest bit tells that more follow. A
// text is its length and its bytes.
//
// Threads: an object belongs to one thread at a time.

#include <cstdint>
#include <string>
#include <string_view>

namespace zqpaths::program::mpi {

class MessageWriter {
public:
    void number(std::uint64_t number);
    void text(std::string_view text);

    /// A number of which any bit is as likely as any other, in eight bytes, the lowest first.
    void fixed(std::uint64_t number);

    /// Bytes without their length, which the reader knows or takes as the rest.
    void raw(std::string_view bytes) { bytes_ += bytes; }

    std::size_t size() const noexcept { return bytes_.size(); }

    /// All that was written; the writer is then empty.
    std::string take() noexcept;

    /// The same for who writes much: the bytes are a view until something else is written.
    std::string_view bytes() const noexcept { return bytes_; }
    void clear() noexcept { bytes_.clear(); }

private:
    std::string bytes_;
};

class MessageReader {
public:
    /// `bytes` outlive the reader.
    explicit MessageReader(std::string_view bytes) noexcept : bytes_(bytes) {}

    // All throw Failure kFailed where the bytes end too early: a rank that is another program.

    std::uint64_t number();
    std::string_view text();
    std::uint64_t fixed();
    std::string_view raw(std::size_t size);

    /// All that was not read.
    std::string_view rest() noexcept;

    bool isAtEnd() const noexcept { return bytes_.empty(); }

private:
    std::string_view bytes_;
};

}  // namespace zqpaths::program::mpi
