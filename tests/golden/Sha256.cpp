#include "tests/golden/Sha256.hpp"

#include <array>
#include <stdexcept>

#include "tests/golden/RecordFields.hpp"

namespace compressedpaths::golden {
namespace {

constexpr std::size_t kDigestSize = 32;

void require(int succeeded) {
    if (succeeded != 1) throw std::runtime_error("the digest cannot be computed");
}

}  // namespace

Sha256::Sha256() : context_(EVP_MD_CTX_new(), &EVP_MD_CTX_free) {
    require(EVP_DigestInit_ex(context_.get(), EVP_sha256(), nullptr));
}

void Sha256::update(std::span<const std::uint8_t> bytes) {
    require(EVP_DigestUpdate(context_.get(), bytes.data(), bytes.size()));
}

void Sha256::update(std::uint64_t value) {
    std::array<std::uint8_t, 8> bytes{};
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(value);
        value >>= 8;
    }
    update(std::span<const std::uint8_t>(bytes));
}

std::string Sha256::finish() {
    Bytes digest(kDigestSize);
    require(EVP_DigestFinal_ex(context_.get(), digest.data(), nullptr));
    return hexOf(digest);
}

std::string sha256Of(std::span<const std::uint8_t> bytes) {
    Sha256 digest;
    digest.update(bytes);
    return digest.finish();
}

}  // namespace compressedpaths::golden
