#pragma once
// Images that tests open, change byte by byte, and the sets they are made of:
//
//     HuffmanPathTree set;
//     buildSample(set);
//     ImageBytes image(set);
//     image.data()[100] = 0;
//     image.open();

#include <cstring>
#include <memory>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "compressedpaths/Image.hpp"
#include "compressedpaths/coding/CodedBatch.hpp"
#include "tests/support/PathSets.hpp"

namespace compressedpaths {

/// An image where it can be opened, and can be changed.
class ImageBytes {
public:
    explicit ImageBytes(const HuffmanPathTree& set) {
        std::ostringstream out;
        set.writeImage(out);
        take(out.str());
    }
    explicit ImageBytes(const std::string& bytes) { take(bytes); }

    std::span<const std::byte> span() const {
        return {reinterpret_cast<const std::byte*>(words_.data()), size_};
    }
    std::unique_ptr<HuffmanPathTree> open() const { return HuffmanPathTree::openImage(span()); }
    std::size_t size() const { return size_; }
    std::string text() const { return {data(), size_}; }

    const char* data() const { return reinterpret_cast<const char*>(words_.data()); }
    char* data() { return reinterpret_cast<char*>(words_.data()); }
    image::Header header() const {
        image::Header header;
        std::memcpy(&header, data(), sizeof header);
        return header;
    }

private:
    void take(const std::string& bytes) {
        words_.resize((bytes.size() + 7) / 8);
        size_ = bytes.size();
        std::memcpy(words_.data(), bytes.data(), size_);
    }

    std::vector<std::uint64_t> words_;
    std::size_t size_ = 0;
};

/// Folders, a run with samples, former files, repeated paths.
inline const TextEntries kSampleEntries{
    {{u"a"}, {u"b", u"c"}}, {{u"a", u"c"}, {u"d", u"e"}}, {{u"many"}, Names(20, u"of-one-name")},
    {{}, {u"top", u"up"}},  {{u"top", u"f"}, {}},         {{u"a"}, {u"b", u"x"}}};

inline void buildSample(HuffmanPathTree& set) {
    buildSet(set, kSampleEntries);
    addSinglePath(set, {u"a", u"c", u"d"});
    addSinglePath(set, {u"many", u"of-one-name"});
    addSinglePath(set, {u"single"});
    addSinglePath(set, {u"many", u"of-one-name"});
}

/// What is added to that.
inline const TextEntries kMore{{{u"a", u"c"}, {u"new"}},
                               {{u"a", u"b"}, {u"new"}},
                               {{u"top"}, {u"new", u"newer"}},
                               {{u"many"}, {u"new"}},
                               {{u"new", u"newer"}, {u"newest"}}};

/// 700 folders of 100 files: so many paths that the image holds the tables of the code.
inline void buildManyPaths(HuffmanPathTree& set) {
    makeCode(set);
    CodedBatch batch(set);
    for (std::size_t folder = 0; folder < 700; ++folder) {
        const std::string digits = std::to_string(folder);
        batch.beginEntry(0);
        batch.appendFolder(u"dir");
        batch.appendFolder(std::u16string(digits.begin(), digits.end()));
        for (std::size_t file = 0; file < 100; ++file)
            batch.appendFile(u"file" + std::u16string(file % 13, u'x'));
    }
    set.addCodedBatch(batch);
}

}  // namespace compressedpaths
