// Lack of memory while images are written, opened, read and added to.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <span>
#include <streambuf>
#include <vector>

#include "tests/compressedpaths/failing/FailingSets.hpp"

namespace compressedpaths {
namespace {

using Peer = HuffmanPathTreePeer;

/// Room for an image, so that only the set asks for memory.
class FixedBuffer : public std::streambuf {
public:
    FixedBuffer() { rewind(); }
    void rewind() {
        setp(reinterpret_cast<char*>(words_.data()),
             reinterpret_cast<char*>(words_.data() + words_.size()));
    }
    std::span<const std::byte> bytes() const {
        return std::as_bytes(std::span(words_)).first(static_cast<std::size_t>(pptr() - pbase()));
    }

private:
    std::vector<std::uint64_t> words_ = std::vector<std::uint64_t>(std::size_t{1} << 14U);
};

struct Image {
    FixedBuffer buffer;
    std::ostream out{&buffer};
};

void write(Image& image, const HuffmanPathTree& set) {
    image.buffer.rewind();
    set.writeImage(image.out);
}

TEST(FailingAllocations, writeAnImageOrLeaveTheSetAlone) {
    struct Writing : Subject {
        Image image;
    };
    Image expected;
    write(expected, *someSet());
    forEachBlock([] { return std::make_unique<Writing>(); },
                 [](Writing& writing) { write(writing.image, *writing.set); },
                 [](Writing& writing) { EXPECT_TRUE(stateOf(*writing.set) == writing.before); },
                 [&](Writing& writing) {
                     EXPECT_EQ(writing.image.buffer.bytes().size(), expected.buffer.bytes().size());
                     HuffmanPathTree::verifyImage(writing.image.buffer.bytes());
                     const auto set = HuffmanPathTree::openImage(writing.image.buffer.bytes());
                     EXPECT_EQ(savedForm(*set), writing.before.saved);
                 });
}

TEST(FailingAllocations, openAnImageOrThrow) {
    struct Opening : Subject {
        Image image;
        std::unique_ptr<HuffmanPathTree> opened;
    };
    const std::size_t failures = forEachBlock(
        [] {
            auto opening = std::make_unique<Opening>();
            write(opening->image, *opening->set);
            return opening;
        },
        [](Opening& opening) {
            HuffmanPathTree::verifyImage(opening.image.buffer.bytes());
            opening.opened = HuffmanPathTree::openImage(opening.image.buffer.bytes());
        },
        [](Opening& opening) { EXPECT_EQ(opening.opened, nullptr); },
        [](Opening& opening) {
            EXPECT_EQ(savedForm(*opening.opened), opening.before.saved);
            EXPECT_EQ(pathsByNumber(*opening.opened, pathsOf(kEntries).size()), pathsOf(kEntries));
        });
    EXPECT_GT(failures, 0U);
}

/// The code words are made when they are first needed.
TEST(FailingAllocations, makeTheCodeWordsOfAnOpenedSetOrThrow) {
    struct Coding : Subject {
        Image image;
        std::unique_ptr<HuffmanPathTree> opened;
        std::size_t nodeCount = 0;
    };
    const std::size_t failures = forEachBlock(
        [] {
            auto coding = std::make_unique<Coding>();
            write(coding->image, *coding->set);
            coding->opened = HuffmanPathTree::openImage(coding->image.buffer.bytes());
            return coding;
        },
        [](Coding& coding) {
            coding.nodeCount = 0;
            coding.opened->traverse([&](HuffmanPathTree*, auto&) { ++coding.nodeCount; });
        },
        [](Coding& coding) { EXPECT_LT(coding.nodeCount, Peer::nodes(*coding.set).size()); },
        [](Coding& coding) { EXPECT_EQ(coding.nodeCount, Peer::nodes(*coding.set).size()); });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocations, addToAnOpenedSetOrNothing) {
    struct Adding {
        Image image;
        std::unique_ptr<HuffmanPathTree> set;
        std::vector<Path> folders;
        std::vector<Path> files;
        SetState before;
    };
    const std::size_t failures = forEachBlock(
        [] {
            auto adding = std::make_unique<Adding>();
            const auto source = someSet();
            write(adding->image, *source);
            adding->set = HuffmanPathTree::openImage(adding->image.buffer.bytes());
            adding->folders = codedLists(*source, kMore, false);
            adding->files = codedLists(*source, kMore, true);
            // Looked at beforehand on another set, so that this one has made nothing yet.
            adding->before = stateOf(*HuffmanPathTree::openImage(adding->image.buffer.bytes()));
            return adding;
        },
        [](Adding& adding) { adding.set->addPathToBTree(adding.folders[0], adding.files[0]); },
        [](Adding& adding) { EXPECT_TRUE(stateOf(*adding.set) == adding.before); },
        [](Adding& adding) {
            const TextPaths walked = walkedPaths(*adding.set);
            for (const TextPath& path : pathsOf({kMore[0]}))
                EXPECT_EQ(std::count(walked.begin(), walked.end(), path), 1);
            adding.set->addPathToBTree(adding.folders[1], adding.files[1]);
            EXPECT_EQ(pathsByNumber(*adding.set, pathsOf(kEntries).size()), pathsOf(kEntries));
        });
    EXPECT_GT(failures, 0U);
}

}  // namespace
}  // namespace compressedpaths
