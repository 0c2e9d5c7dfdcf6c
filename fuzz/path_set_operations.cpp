// Scripts of operations on a few path sets, each compared with a plain one: batches, single entries
// and paths, copies that share a trie, walks, saving and loading, images, refused names.

#include <array>
#include <cstring>
#include <deque>
#include <sstream>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "fuzz/ChosenNames.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/Require.hpp"
#include "tests/support/PlainPathSet.hpp"
#include "tests/support/SetComparison.hpp"

using namespace compressedpaths;
using fuzzing::chooseNames;
using fuzzing::InputScript;
using fuzzing::kNameCharacters;
using fuzzing::require;

namespace {

using Names = std::vector<std::u16string>;

constexpr std::size_t kMaxOperations = 60;

/// A path set and what it should be.
struct Pair {
    std::unique_ptr<HuffmanPathTree> set;
    PlainPathSet plain;
};

class Sets {
public:
    explicit Sets(InputScript& script) : script_(script) {
        for (std::size_t i = 0; i < kNameCharacters.size(); ++i)
            frequencies_.push_back(script_.byte());
        for (Pair& pair : pairs_) renew(pair);
    }

    void run() {
        for (std::size_t done = 0; done < kMaxOperations && !script_.isAtEnd(); ++done) {
            Pair& pair = choosePair();
            const unsigned choice = script_.byte();
            // Nine of one kind, so that what the bytes of older inputs mean stays.
            switch (choice < 252 ? choice % 9 : choice) {
                case 0:
                    addBatch(pair);
                    break;
                case 1:
                    addEntry(pair, chooseNames(script_, 0));
                    break;
                case 2:
                    addSingle(pair);
                    break;
                case 3:
                    refuseBatch(pair);
                    break;
                case 4:
                    copy(pair, choosePair());
                    break;
                case 5:
                    load(pair, choosePair());
                    break;
                case 6:
                    fetch(pair);
                    break;
                case 7:
                    addEntry(pair, chooseManyNames());
                    break;
                case 8:
                    renew(pair);
                    break;
                case 252:
                case 253:
                    open(pair, choosePair());
                    break;
                default:
                    walk(pair);
                    break;
            }
        }
        for (Pair& pair : pairs_) {
            requireSame(pair);
            requireNoDifference(differenceInTexts(*pair.set, pair.plain));
            requireNoDifference(differenceInFinding(*pair.set, pair.plain));
            requireWalksToTheEnd(pair);
        }
    }

private:
    static void requireNoDifference(const std::string& difference) {
        require(difference.empty(), difference.c_str());
    }
    static void requireSame(Pair& pair) {
        requireNoDifference(differenceOf(*pair.set, pair.plain));
    }

    Pair& choosePair() { return pairs_[script_.byte() % pairs_.size()]; }

    /// Enough different names for a folder that the trie searches in another way.
    Names chooseManyNames() {
        Names names(60 + script_.byte() % 16);
        for (std::size_t i = 0; i < names.size(); ++i)
            names[i] = {kNameCharacters[i % kNameCharacters.size()],
                        kNameCharacters[i / kNameCharacters.size() % kNameCharacters.size()]};
        return names;
    }

    void renew(Pair& pair) {
        pair.set = std::make_unique<HuffmanPathTree>();
        pair.plain = PlainPathSet();
        pair.set->deflateHuffman(frequencies_.data(), std::u16string(kNameCharacters));
    }

    static Path code(Pair& pair, const Names& names) {
        Path coded;
        for (const std::u16string& name : names) coded.push_back(pair.set->generateCodeFor(name));
        return coded;
    }

    void addBatch(Pair& pair) {
        std::vector<Names> folders(script_.byte() % 4);
        std::vector<Names> files;
        for (Names& folder : folders) {
            folder = chooseNames(script_, 1);
            files.push_back(chooseNames(script_, 0));
            pair.plain.addEntry(code(pair, folder), code(pair, files.back()));
        }
        pair.set->generateCodeAsyncAndAddPaths(folders, files);
        requireSame(pair);
    }

    void addEntry(Pair& pair, const Names& files) {
        Path codedFolder = code(pair, chooseNames(script_, 0));
        std::vector<Bytes> codedFiles = code(pair, files);
        pair.plain.addEntry(codedFolder, codedFiles);
        pair.set->addPathToBTree(codedFolder, codedFiles);
        requireSame(pair);
    }

    void addSingle(Pair& pair) {
        Path coded = code(pair, chooseNames(script_, 1));
        pair.plain.addSingle(coded);
        pair.set->addPathToBTree(coded);
        requireSame(pair);
    }

    void refuseBatch(Pair& pair) {
        std::vector<Names> folders{chooseNames(script_, 1), chooseNames(script_, 1)};
        std::vector<Names> files{chooseNames(script_, 0), chooseNames(script_, 0)};
        files.back().push_back(script_.byte() % 2 == 0 ? u"" : u"?");
        const bool taken = fuzzing::succeeds<NoCodeForEmptyString, CodeNotFoundException>(
            [&] { pair.set->generateCodeAsyncAndAddPaths(folders, files); });
        require(!taken, "a name without a code is refused");
        requireSame(pair);
    }

    static void copy(Pair& to, const Pair& from) {
        if (&to == &from) return;
        to.set->copyTree(*from.set);
        to.plain = from.plain;
        requireSame(to);
    }

    void load(Pair& to, Pair& from) {
        const bool compress = script_.byte() % 2 == 1;
        Bytes bytes;
        from.set->serialize(bytes, compress);
        auto loaded = std::make_unique<HuffmanPathTree>();
        loaded->deserialize(bytes, compress);
        loaded->inflateHuffman(from.set->getTreeString());
        to = {std::move(loaded), from.plain.loaded()};
        requireSame(to);
    }

    void open(Pair& to, const Pair& from) {
        std::ostringstream out;
        from.set->writeImage(out);
        const std::string text = out.str();
        std::vector<std::uint64_t>& words = images_.emplace_back(text.size() / 8 + 1);
        std::memcpy(words.data(), text.data(), text.size());
        const auto image = std::as_bytes(std::span(words)).first(text.size());
        HuffmanPathTree::verifyImage(image);
        to = {HuffmanPathTree::openImage(image), from.plain.opened()};
        requireSame(to);
    }

    /// Some numbers in any order: what single requests give, in that order.
    void fetch(Pair& pair) {
        if (pair.plain.pathCount() == 0) return;
        std::vector<double> numbers(1 + script_.byte() % 8);
        Path expected;
        for (double& number : numbers) {
            const std::size_t chosen = 1 + script_.byte() % pair.plain.pathCount();
            const PlainPathSet::Fetched path = pair.plain.fetch(chosen);
            if (path.kind != PlainPathSet::Fetched::Kind::kPath) return;
            number = static_cast<double>(chosen);
            expected.insert(expected.end(), path.entry->components.begin(),
                            path.entry->components.end());
            expected.push_back(path.file->key);
        }
        std::vector<Path> folders;
        std::vector<Path> files;
        pair.set->getPath(folders, files, numbers);
        require(folders.size() == files.size(), "a folder for each group of files");
        Path fetched;
        for (std::size_t group = 0; group < folders.size(); ++group) {
            for (const Bytes& name : files[group]) {
                fetched.insert(fetched.end(), folders[group].begin(), folders[group].end());
                fetched.push_back(name);
            }
        }
        require(fetched == expected, "paths are fetched in the order asked");
    }

    void walk(Pair& pair) {
        const unsigned steps = script_.byte();
        if (steps % 2 == 0) {
            pair.set->resetPathsToBTree();
            pair.plain.resetWalk();
        }
        for (unsigned left = steps / 2 % 8; left > 0; --left) step(pair);
        requireSame(pair);
    }

    /// False past the last path.
    static bool step(Pair& pair) {
        require(pair.set->hasNextPathFromBTree() == pair.plain.hasNext(), "the walk ends in time");
        const std::optional<PlainPathSet::Step> expected = pair.plain.next();
        Path path;
        const bool isTaken =
            fuzzing::succeeds<NoMorePathException>([&] { pair.set->getNextPathFromBTree(path); });
        require(isTaken == expected.has_value(), "the walk gives a path or none");
        require(!expected || path == expected->path, "the walk gives the paths in order");
        return isTaken;
    }

    static void requireWalksToTheEnd(Pair& pair) {
        pair.set->resetPathsToBTree();
        pair.plain.resetWalk();
        while (step(pair)) {
        }
    }

    InputScript& script_;
    std::vector<double> frequencies_;
    std::deque<std::vector<std::uint64_t>> images_;  // outlive the sets that stand on them
    std::array<Pair, 3> pairs_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    Sets(script).run();
    return 0;
}
