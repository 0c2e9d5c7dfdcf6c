// Any bytes as the image of a set: opened, walked, asked, searched, saved and added to. What is
// wrong is refused wherever it is met. An image that is verified is a set: none of this is refused
// then, and it is saved as it is loaded again.
//
// The first byte says whether the sums are put right, which chance would hardly do. Inputs are
// changed part by part.

#include <array>
#include <cstring>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/Image.hpp"
#include "compressedpaths/sixpacks/ByteReader.hpp"
#include "fuzz/Mutation.hpp"
#include "fuzz/Require.hpp"
#include "tests/support/ImageSums.hpp"
#include "tests/support/Peers.hpp"

using namespace compressedpaths;
using fuzzing::require;
using fuzzing::succeeds;

namespace {

/// Steps of each kind at most: a damaged image may hold paths as deep as it has folders.
constexpr std::size_t kMaxSteps = 100;

std::vector<std::uint64_t> wordsOf(const std::uint8_t* data, std::size_t size) {
    std::vector<std::uint64_t> words(size / 8 + 1);
    if (size > 0) std::memcpy(words.data(), data, size);
    return words;
}

/// True unless `step` refuses what it met.
template <class Step>
bool isTaken(Step step) {
    return succeeds<InvalidImageException, InvalidPathNumberException, InvalidTrackException,
                    InvalidFileNumberException, InvalidCodeException, NoUsableCodingTreeException,
                    IncompleteCodingTreeException, CodeWordsTooLongException, CodeNotFoundException,
                    NoTreeToTraverseException, NoMorePathException, SetTooLargeException>(step);
}

class Reading {
public:
    Reading(HuffmanPathTree& set, bool isVerified) : set_(set), isVerified_(isVerified) {}

    void run() {
        step([&] { walk(); });
        for (std::size_t number = 1; number <= std::min(kMaxSteps, set_.size()); ++number)
            read(number);
        read(set_.size());
        step([&] { search(FolderId{}); });
        step([&] { save(); });
        step([&] { add(); });
    }

private:
    template <class Step>
    void step(Step step) {
        require(isTaken(step) || !isVerified_, "nothing of a verified image is refused");
    }

    void walk() {
        set_.resetPathsToBTree();
        for (std::size_t i = 0; i < kMaxSteps && set_.hasNextPathFromBTree(); ++i) {
            Path path;
            set_.getNextPathFromBTree(path);
            require(!path.empty(), "a path has components");
        }
    }

    /// Any of these may refuse a number: of a path that was added on its own, for example.
    void read(std::size_t number) {
        std::vector<Path> folders;
        std::vector<Path> files;
        const bool isFetched =
            isTaken([&] { set_.getPath(folders, files, {static_cast<double>(number)}); });
        require(isFetched || (folders.empty() && files.empty()), "nothing of a refused fetch");
        std::string text = "kept";
        if (!isTaken([&] { set_.appendText(number, "/", text); }))
            require(text == "kept", "nothing of a refused text");
        isTaken(
            [&] { set_.forEachText(number, number, "/", [](std::size_t, std::string_view) {}); });
        const std::array<std::size_t, 3> numbers{number, number + 1, 1};
        isTaken([&] { set_.forEachText(numbers, "/", [](std::size_t, std::string_view) {}); });
        isTaken([&] { set_.forEachNameWith(u"a", {number, number}, [](std::size_t) {}); });
    }

    void search(FolderId root) {
        std::vector<FolderId> open{root};
        for (std::size_t i = 0; i < open.size() && i < kMaxSteps; ++i) {
            const FolderId folder = open[i];
            for (const HuffmanPathTree::NumberRange& range : set_.entriesOf(folder))
                require(range.first <= range.last, "a range holds a number");
            set_.numberOf(folder, u"a");
            isTaken([&] { set_.nameOf(folder); });  // names may be any bytes, not of the code
            const std::vector<FolderId> inside = set_.foldersIn(folder);
            for (const FolderId below : inside)
                require(!isVerified_ || set_.parentOf(below) == folder,
                        "a folder is in its parent");
            open.insert(open.end(), inside.begin(), inside.end());
        }
    }

    void save() {
        Bytes bytes;
        set_.serialize(bytes, false);
        if (!isVerified_) return;
        HuffmanPathTree loaded;
        loaded.deserialize(bytes, false);
        // The counters of an image may be larger than need be, and the form wider; what is loaded
        // has its own.
        Bytes again;
        loaded.serialize(again, false);
        HuffmanPathTree normal;
        normal.deserialize(again, false);
        Bytes once;
        normal.serialize(once, false);
        require(once.size() == again.size(), "a set is saved the same way each time");
    }

    void add() {
        const std::size_t before = set_.size();
        Path folder{{0, 1}, {1, 1}};
        std::vector<Bytes> files{{0, 1}, {2, 2}};
        set_.addPathToBTree(folder, files);
        require(set_.size() == before + 2, "what was added is counted");
        Path path{{0, 1}, {3, 2}};
        set_.addPathToBTree(path);
        step([&] { walk(); });
    }

    HuffmanPathTree& set_;
    bool isVerified_;
};

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed) {
    fuzzing::Random random(seed);
    image::Header header;
    if (size < 1 + sizeof header || fuzzing::below(6, random) == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    data[0] |= 1;
    const std::span<std::uint8_t> bytes(data + 1, size - 1);
    std::memcpy(&header, bytes.data(), sizeof header);
    const std::size_t part = fuzzing::below(image::kPartCount + 1, random);
    const image::Extent extent =
        part < image::kPartCount ? header.parts.at(part) : image::Extent{0, sizeof header};
    if (extent.offset > bytes.size() || extent.byteSize > bytes.size() - extent.offset) return size;
    fuzzing::mutateInPlace(bytes.subspan(extent.offset, extent.byteSize), random);
    return size;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    std::vector<std::uint64_t> words = wordsOf(data + 1, size - 1);
    const auto image = std::as_writable_bytes(std::span(words)).first(size - 1);
    if (data[0] % 2 == 1) putImageSumsRight(image);

    const bool isVerified = isTaken([&] { HuffmanPathTree::verifyImage(image); });
    std::unique_ptr<HuffmanPathTree> set;
    const bool isOpened = isTaken([&] { set = HuffmanPathTree::openImage(image); });
    require(isOpened || !isVerified, "a verified image can be opened");
    if (isOpened) Reading(*set, isVerified).run();
    return 0;
}
