#include "zqpaths/set/SegmentBuilder.hpp"

#include <cassert>
#include <ostream>
#include <span>
#include <streambuf>
#include <vector>

#include "zqpaths/set/SetBuilding.hpp"
#include "zqpaths/set/TreeStringBytes.hpp"

namespace zqpaths {
namespace {

using compressedpaths::FlatArray;
using compressedpaths::HuffmanPathTree;

/// What is written to it stands at the end of an array.
class ArrayBuffer : public std::streambuf {
public:
    explicit ArrayBuffer(FlatArray<std::uint8_t>& bytes) noexcept : bytes_(bytes) {}

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override {
        const auto size = static_cast<std::size_t>(count);
        bytes_.reserveFor(size);
        bytes_.append(reinterpret_cast<const std::uint8_t*>(bytes), size);
        return count;
    }

    int_type overflow(int_type character) override {
        if (!traits_type::eq_int_type(character, traits_type::eof()))
            bytes_.push(static_cast<std::uint8_t>(traits_type::to_char_type(character)));
        return traits_type::not_eof(character);
    }

private:
    FlatArray<std::uint8_t>& bytes_;
};

void writeImage(const HuffmanPathTree& set, BuiltSegment& segment) {
    ArrayBuffer buffer(segment.bytes);
    std::ostream out(&buffer);
    out.exceptions(std::ios::badbit);  // so that lack of memory is thrown as such
    set.writeImage(out);
    segment.bytes.shrink();
}

void writePacked(HuffmanPathTree& set, BuiltSegment& segment) {
    std::vector<std::uint8_t> bytes;
    appendTreeString(set.getTreeString(), bytes);
    segment.treeStringSize = bytes.size();
    set.serialize(bytes, true);
    segment.bytes.reserveFor(bytes.size());
    segment.bytes.append(bytes.data(), bytes.size());
}

}  // namespace

SegmentBytes BuiltSegment::view() const noexcept {
    return {form, pathCount, textSize, treeStringSize, std::as_bytes(bytes.values())};
}

BuiltSegment buildSegment(const CollectedPaths& paths, SegmentForm form, unsigned threads,
                          const WorkWatcher& watch) {
    assert(!paths.isEmpty());
    HuffmanPathTree set;
    {
        CharacterCounts counts;
        countCharacters(paths, threads, counts);
        makeCode(counts, set);
    }
    addPaths(paths, threads, set, watch);

    BuiltSegment segment{form, paths.size(), paths.textSize(), 0, {}};
    if (form == SegmentForm::kImage)
        writeImage(set, segment);
    else
        writePacked(set, segment);
    return segment;
}

}  // namespace zqpaths
