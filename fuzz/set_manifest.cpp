// A manifest of any bytes is refused with an Error, or says what is written and read again as the
// same.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/Require.hpp"
#include "zqpaths/Error.hpp"
#include "zqpaths/manifest/SetManifest.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    zqpaths::SetManifest manifest;
    try {
        manifest = zqpaths::decodeManifest(text);
    } catch (const zqpaths::Error& error) {
        fuzzing::require(error.kind() == zqpaths::ErrorKind::kNotASet ||
                             error.kind() == zqpaths::ErrorKind::kDamaged,
                         "a manifest is refused as what it is");
        return 0;
    }
    fuzzing::require(zqpaths::decodeManifest(zqpaths::encodeManifest(manifest)) == manifest,
                     "what is written is read as the same");
    return 0;
}
