// What `info` reads of a saved form: whatever the body is, it is read within its bounds or refused.

#include "compressedpaths/sixpacks/CompressedBlocks.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "tools/zqpaths/Failure.hpp"
#include "tools/zqpaths/SavedForm.hpp"

using fuzzing::InputScript;
using fuzzing::require;
using fuzzing::succeeds;

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kFolderLimit = 3;

/// Chance would hardly make a stream whose checksum holds, so the body is compressed here.
Bytes savedForm(Bytes body, std::uint64_t statedSize) {
    Bytes form;
    for (unsigned i = 0; i < 8; ++i)
        form.push_back(static_cast<std::uint8_t>(statedSize >> (8 * i)));
    const Bytes stream = compressedpaths::sixpacks::compressUint8(body);
    form.insert(form.end(), stream.begin(), stream.end());
    return form;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    const std::uint64_t beyond = script.byte() % 4 == 0 ? script.integer(8) : 0;
    const std::u16string characters(script.byte(), u'x');
    const Bytes body = script.rest();
    const Bytes bytes = savedForm(body, body.size() + beyond);
    succeeds<zqpaths::Failure>([&] {
        const zqpaths::SavedForm form = zqpaths::readSavedForm(bytes, characters, kFolderLimit);
        require(form.byteSize <= body.size(), "no more is read than there is");
        require(form.shape.byteSize + form.structure.byteSize + form.keys.byteSize +
                        form.index.byteSize ==
                    form.byteSize,
                "the sections make up the body");
        require(form.largestFolders.size() <= kFolderLimit, "no more folders than wanted");
    });
    return 0;
}
