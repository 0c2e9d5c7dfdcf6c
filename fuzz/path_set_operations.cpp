// Scripts of operations on a few path sets, each compared with a plain one: batches, single
// entries and paths, copies that share their nodes, saving and loading, refused names.

#include <array>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "fuzz/InputScript.hpp"
#include "fuzz/PlainPathSet.hpp"
#include "fuzz/Require.hpp"
#include "tests/support/Peers.hpp"

using namespace compressedpaths;
using fuzzing::InputScript;
using fuzzing::PlainPath;
using fuzzing::PlainPathSet;
using fuzzing::require;

namespace {

constexpr std::u16string_view kCharacters = u"abcdefgh";
constexpr std::size_t kMaxOperations = 60;
constexpr std::size_t kMaxPaths = 500;

/// A path set and what it should be.
struct Pair {
    std::unique_ptr<HuffmanPathTree> set;
    PlainPathSet plain;
};

class Sets {
public:
    explicit Sets(InputScript& script) : script_(script) {
        for (std::size_t i = 0; i < kCharacters.size(); ++i) frequencies_.push_back(script_.byte());
        for (Pair& pair : pairs_) renew(pair);
    }

    void run() {
        for (std::size_t done = 0; done < kMaxOperations && !script_.isAtEnd(); ++done) {
            Pair& pair = choosePair();
            switch (script_.byte() % 9) {
                case 0:
                    addBatch(pair);
                    break;
                case 1:
                    addEntry(pair, chooseNames(0));
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
                default:
                    renew(pair);
                    break;
            }
        }
        for (Pair& pair : pairs_) requireSame(pair);
    }

private:
    Pair& choosePair() { return pairs_[script_.byte() % pairs_.size()]; }

    std::u16string chooseName() {
        const unsigned choice = script_.byte();
        std::u16string name(1, kCharacters[choice % kCharacters.size()]);
        if (choice >= 192) name.push_back(kCharacters[choice / 8 % kCharacters.size()]);
        return name;
    }

    PlainPath chooseNames(std::size_t least) {
        PlainPath names(least + script_.byte() % 4);
        for (std::u16string& name : names) name = chooseName();
        return names;
    }

    /// Enough different names for a folder that the trie searches in another way.
    PlainPath chooseManyNames() {
        PlainPath names(60 + script_.byte() % 16);
        for (std::size_t i = 0; i < names.size(); ++i)
            names[i] = {kCharacters[i % kCharacters.size()],
                        kCharacters[i / kCharacters.size() % kCharacters.size()]};
        return names;
    }

    void renew(Pair& pair) {
        pair.set = std::make_unique<HuffmanPathTree>();
        pair.plain = PlainPathSet();
        pair.set->deflateHuffman(frequencies_.data(), std::u16string(kCharacters));
    }

    static std::vector<Bytes> code(HuffmanPathTree& set, const PlainPath& names) {
        std::vector<Bytes> coded;
        for (const std::u16string& name : names) coded.push_back(set.generateCodeFor(name));
        return coded;
    }

    static PlainPath decode(const HuffmanPathTree& set, const Path& coded) {
        PlainPath names;
        for (const Bytes& code : coded) names.push_back(set.generatePathFrom(code));
        return names;
    }

    void addBatch(Pair& pair) {
        std::vector<PlainPath> folders(script_.byte() % 4);
        std::vector<PlainPath> files;
        for (PlainPath& folder : folders) {
            folder = chooseNames(1);
            files.push_back(chooseNames(0));
            pair.plain.addEntry(folder, files.back());
        }
        pair.set->generateCodeAsyncAndAddPaths(folders, files);
    }

    void addEntry(Pair& pair, const PlainPath& files) {
        const PlainPath folder = chooseNames(0);
        std::vector<Bytes> codedFolder = code(*pair.set, folder);
        std::vector<Bytes> codedFiles = code(*pair.set, files);
        pair.set->addPathToBTree(codedFolder, codedFiles);
        pair.plain.addEntry(folder, files);
    }

    void addSingle(Pair& pair) {
        const PlainPath path = chooseNames(1);
        std::vector<Bytes> coded = code(*pair.set, path);
        pair.set->addPathToBTree(coded);
        pair.plain.addSingle(path);
    }

    void refuseBatch(Pair& pair) {
        std::vector<PlainPath> folders{chooseNames(1), chooseNames(1)};
        std::vector<PlainPath> files{chooseNames(0), chooseNames(0)};
        files.back().push_back(script_.byte() % 2 == 0 ? u"" : u"?");
        const bool taken = fuzzing::succeeds<NoCodeForEmptyString, CodeNotFoundException>(
            [&] { pair.set->generateCodeAsyncAndAddPaths(folders, files); });
        require(!taken, "a name without a code is refused");
        requireSame(pair);
    }

    static void copy(Pair& to, const Pair& from) {
        if (&to == &from) return;
        to.set = std::make_unique<HuffmanPathTree>();
        to.set->copyTree(*from.set);
        to.plain = from.plain.copy();
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

    /// Some numbers in any order.
    void fetch(Pair& pair) {
        if (pair.plain.pathCount() == 0) return;
        std::vector<double> numbers(1 + script_.byte() % 8);
        std::vector<PlainPath> expected;
        for (double& number : numbers) {
            const std::size_t chosen = 1 + script_.byte() % pair.plain.pathCount();
            const std::optional<PlainPath> path = pair.plain.fetch(chosen);
            if (!path) return;
            number = static_cast<double>(chosen);
            expected.push_back(*path);
        }
        require(fetchAll(*pair.set, numbers) == expected, "paths are fetched in the order asked");
    }

    static std::vector<PlainPath> fetchAll(HuffmanPathTree& set,
                                           const std::vector<double>& numbers) {
        std::vector<Path> folders;
        std::vector<Path> files;
        set.getPath(folders, files, numbers);
        require(folders.size() == files.size(), "a folder for each group of files");
        std::vector<PlainPath> paths;
        for (std::size_t group = 0; group < folders.size(); ++group) {
            for (const Bytes& name : files[group]) {
                PlainPath path = decode(set, folders[group]);
                path.push_back(set.generatePathFrom(name));
                paths.push_back(std::move(path));
            }
        }
        return paths;
    }

    static void requireSame(Pair& pair) {
        require(HuffmanPathTreePeer::pathCount(*pair.set) == pair.plain.pathCount(),
                "the set counts its paths");
        for (std::size_t number = 1; number <= std::min(kMaxPaths, pair.plain.pathCount());
             ++number) {
            const std::optional<PlainPath> expected = pair.plain.fetch(number);
            if (!expected) continue;
            require(fetchAll(*pair.set, {static_cast<double>(number)}) ==
                        std::vector<PlainPath>{*expected},
                    "a path is fetched by its number");
        }
        pair.set->resetPathsToBTree();
        for (const PlainPath& expected : pair.plain.walk()) {
            require(pair.set->hasNextPathFromBTree(), "the walk does not end early");
            Path path;
            pair.set->getNextPathFromBTree(path);
            require(decode(*pair.set, path) == expected, "the walk gives the paths in order");
        }
        require(!pair.set->hasNextPathFromBTree(), "the walk ends");
    }

    InputScript& script_;
    std::vector<double> frequencies_;
    std::array<Pair, 3> pairs_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputScript script(data, size);
    Sets(script).run();
    return 0;
}
