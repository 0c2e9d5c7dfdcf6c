#pragma once
// The digest by which records give what would be long.
//
//     Sha256 digest;
//     digest.update(bytes);
//     EXPECT_EQ(digest.finish(), textOf(record["sha256"]));

#include <openssl/evp.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace compressedpaths::golden {

class Sha256 {
public:
    Sha256();

    void update(std::span<const std::uint8_t> bytes);

    /// An unsigned 64-bit integer, lowest byte first.
    void update(std::uint64_t value);

    /// The digest of all bytes in lower-case hexadecimal; nothing can be added afterwards.
    std::string finish();

private:
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context_;
};

std::string sha256Of(std::span<const std::uint8_t> bytes);

}  // namespace compressedpaths::golden
