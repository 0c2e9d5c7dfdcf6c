// Random histories of a few path sets, each compared with a plain set after every step: entries and
// single paths over so few names that files become folders, folders are met again and names repeat;
// copies that share a trie; walks that go on while paths are added; sets that are loaded or opened
// and added to.
//
// ZQ_HISTORIES is the number of histories, ZQ_FIRST_HISTORY the seed of the first one.

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <deque>
#include <iostream>
#include <memory>
#include <span>
#include <sstream>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "compressedpaths/coding/CodedBatch.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/PlainPathSet.hpp"
#include "tests/support/SetComparison.hpp"

namespace compressedpaths {
namespace {

constexpr std::uint64_t kHistories = 10'000;  // of a run that says nothing else
constexpr std::size_t kSteps = 8;
constexpr std::size_t kMostSets = 3;
const std::u16string kCharacters = u"abcd";

/// Sebastiano Vigna, "SplitMix64": seeds that follow one another give unlike sequences.
class Chance {
public:
    explicit Chance(std::uint64_t seed) : state_(seed) {}

    std::uint64_t operator()(std::uint64_t below) {
        std::uint64_t bits = (state_ += 0x9E3779B97F4A7C15);
        bits = (bits ^ bits >> 30) * 0xBF58476D1CE4E5B9;
        bits = (bits ^ bits >> 27) * 0x94D049BB133111EB;
        return (bits ^ bits >> 31) % below;
    }
    bool oneIn(std::uint64_t count) { return (*this)(count) == 0; }

private:
    std::uint64_t state_;
};

/// The names of all histories and their codes, which are those of every set here.
class NamePool {
public:
    NamePool() {
        makeCode(coder_, kCharacters);
        for (const char16_t* const name : {u"a", u"b", u"c", u"d", u"ab", u"cab"}) add(name);
        add(std::u16string(150, u'a'));  // longer than a length in one byte
        for (const char16_t first : kCharacters)
            for (const char16_t second : kCharacters)
                for (const char16_t third : kCharacters) add({first, second, third, u'd'});
    }

    const HuffmanPathTree& coder() const { return coder_; }

    std::size_t choose(Chance& chance) const {
        if (chance.oneIn(40)) return kLong;
        return chance.oneIn(4) ? chance(kShort) : chance(3);
    }

    const std::u16string& name(std::size_t index) const { return names_[index]; }
    const Bytes& key(std::size_t index) const { return keys_[index]; }
    std::size_t size() const { return names_.size(); }

private:
    static constexpr std::size_t kShort = 6;
    static constexpr std::size_t kLong = 6;

    void add(const std::u16string& name) {
        names_.push_back(name);
        keys_.push_back(coder_.generateCodeFor(name));
    }

    HuffmanPathTree coder_;
    std::vector<std::u16string> names_;
    std::vector<Bytes> keys_;
};

struct ChosenEntry {
    std::vector<std::size_t> folder;  // indices of names
    std::vector<std::size_t> files;
};

class History {
public:
    History(const NamePool& pool, std::uint64_t seed, std::ostream* log)
        : pool_(pool), chance_(seed), log_(log) {
        pairs_.reserve(kMostSets);  // steps hold references
        renew(pairs_.emplace_back());
    }

    /// What differs first; empty if nothing does.
    std::string run() {
        for (std::size_t step = 0; step < kSteps && difference_.empty(); ++step) {
            Pair& pair = pairs_[chance_(pairs_.size())];
            act(pair);
            compareAfterStep(pair);
        }
        for (Pair& pair : pairs_) compare(pair, true);
        return difference_;
    }

private:
    struct Pair {
        std::unique_ptr<HuffmanPathTree> set;
        PlainPathSet plain;
    };

    void act(Pair& pair) {
        switch (chance_(16)) {
            case 0:
            case 1:
            case 2:
                return addEntry(pair, chooseEntry(0));
            case 3:
                return addEntry(pair, chooseLongEntry());
            case 4:
            case 5:
                return addBatch(pair);
            case 6:
                return addCodedBatch(pair);
            case 7:
            case 8:
                return addSingle(pair);
            case 9:
                return copy(pair);
            case 10:
                return load(pair);
            case 11:
                say("open");
                pair = opened(pair);
                return;
            case 12:
                say("reset");
                pair.set->resetPathsToBTree();
                return pair.plain.resetWalk();
            default:
                return walk(pair);
        }
    }

    // --- Choosing.

    std::vector<std::size_t> chooseNames(std::size_t least, std::size_t most) {
        std::vector<std::size_t> names(least + chance_(most - least + 1));
        for (std::size_t& name : names) name = pool_.choose(chance_);
        return names;
    }

    ChosenEntry chooseEntry(std::size_t leastFolders) {
        return {chooseNames(leastFolders, 3), chooseNames(0, 3)};
    }

    /// As many files as a run with samples has, or a folder that is searched by a table.
    ChosenEntry chooseLongEntry() {
        ChosenEntry entry{chooseNames(0, 1), {}};
        const std::size_t count = chance_.oneIn(8) ? 60 + chance_(12) : 15 + chance_(6);
        for (std::size_t i = 0; i < count; ++i)
            entry.files.push_back(chance_.oneIn(8) ? pool_.choose(chance_) : chance_(pool_.size()));
        return entry;
    }

    Path keysOf(const std::vector<std::size_t>& names) const {
        Path keys;
        for (const std::size_t name : names) keys.push_back(pool_.key(name));
        return keys;
    }

    Names namesOf(const std::vector<std::size_t>& names) const {
        Names texts;
        for (const std::size_t name : names) texts.push_back(pool_.name(name));
        return texts;
    }

    // --- Steps.

    /// A set without paths, on a trie of its own. To take a code over takes less than to make it.
    void renew(Pair& pair) {
        pair.set = std::make_unique<HuffmanPathTree>();
        if (chance_.oneIn(16)) return makeCode(*pair.set, kCharacters);
        pair.set->copyTree(pool_.coder());
        Bytes structure;
        std::vector<Bytes> keys;
        pair.set->deserializePathTree(structure, keys);
    }

    void addToPlain(Pair& pair, const ChosenEntry& entry) {
        pair.plain.addEntry(keysOf(entry.folder), keysOf(entry.files));
    }

    void addEntry(Pair& pair, const ChosenEntry& entry) {
        say("entry", entry);
        Path folder = keysOf(entry.folder);
        std::vector<Bytes> files = keysOf(entry.files);
        pair.set->addPathToBTree(folder, files);
        addToPlain(pair, entry);
    }

    void addBatch(Pair& pair) {
        std::vector<Names> folders;
        std::vector<Names> files;
        for (std::uint64_t left = chance_(4); left > 0; --left) {
            const ChosenEntry entry = chooseEntry(chance_(2));
            say("of a batch", entry);
            folders.push_back(namesOf(entry.folder));
            files.push_back(namesOf(entry.files));
            addToPlain(pair, entry);
        }
        pair.set->generateCodeAsyncAndAddPaths(folders, files);
    }

    void addCodedBatch(Pair& pair) {
        CodedBatch batch(*pair.set);
        ChosenEntry before;
        for (std::uint64_t left = chance_(4); left > 0; --left) {
            ChosenEntry entry = chooseEntry(0);
            const std::size_t shared = chance_(before.folder.size() + 1);
            entry.folder.insert(entry.folder.begin(), before.folder.begin(),
                                before.folder.begin() + static_cast<std::ptrdiff_t>(shared));
            say("of a coded batch", entry);
            batch.beginEntry(shared);
            for (std::size_t i = shared; i < entry.folder.size(); ++i)
                batch.appendFolder(pool_.name(entry.folder[i]));
            for (const std::size_t file : entry.files) batch.appendFile(pool_.name(file));
            addToPlain(pair, entry);
            before = entry;
        }
        pair.set->addCodedBatch(batch);
    }

    void addSingle(Pair& pair) {
        const ChosenEntry entry{chooseNames(1, 4), {}};
        say("single", entry);
        Path path = keysOf(entry.folder);
        pair.set->addPathToBTree(path);
        pair.plain.addSingle(keysOf(entry.folder));
    }

    void copy(Pair& from) {
        say("copy");
        if (pairs_.size() < kMostSets) {
            Pair& pair = pairs_.emplace_back();
            if (chance_.oneIn(2)) renew(pair);
            return copyTo(pair, from);
        }
        copyTo(pairs_[chance_(pairs_.size())], from);
    }

    static void copyTo(Pair& to, const Pair& from) {
        if (&to == &from) return;
        if (!to.set) to.set = std::make_unique<HuffmanPathTree>();
        to.set->copyTree(*from.set);
        to.plain = from.plain;
    }

    void load(Pair& pair) {
        say("load");
        const std::u16string treeString = pair.set->getTreeString();
        pair = reloaded(pair, chance_.oneIn(4));
        pair.set->inflateHuffman(treeString);
    }

    void walk(Pair& pair) {
        for (std::uint64_t left = 1 + chance_(4); left > 0; --left) {
            say("next");
            if (pair.set->hasNextPathFromBTree() != pair.plain.hasNext())
                return differ("hasNextPath");
            Path path{{1, 2, 3}};
            const auto expected = pair.plain.next();
            if (!expected) return requireNoNext(pair, path);
            pair.set->getNextPathFromBTree(path);
            if (expected->isRepeated) path.erase(path.begin());  // such a path is appended
            if (path != expected->path) return differ("the next path");
        }
    }

    void requireNoNext(Pair& pair, Path& path) {
        try {
            pair.set->getNextPathFromBTree(path);
        } catch (const NoMorePathException&) {
            if (path != Path{{1, 2, 3}}) differ("the path past the last");
            return;
        }
        differ("the end of the walk");
    }

    // --- Saving and opening.

    /// The set that the saved form loads as, without its code, which takes longer than all the
    /// rest.
    static Pair reloaded(Pair& pair, bool compress) {
        Pair result{std::make_unique<HuffmanPathTree>(), pair.plain.loaded()};
        Bytes bytes = savedForm(*pair.set, compress);
        result.set->deserialize(bytes, compress);
        return result;
    }

    Pair opened(const Pair& pair) {
        std::ostringstream out;
        pair.set->writeImage(out);
        const std::string image = out.str();
        images_.emplace_back(image.size() / 8 + 1);
        std::memcpy(images_.back().data(), image.data(), image.size());
        const std::span<const std::byte> bytes =
            std::as_bytes(std::span(images_.back())).first(image.size());
        if (chance_.oneIn(16)) HuffmanPathTree::verifyImage(bytes);
        return {HuffmanPathTree::openImage(bytes), pair.plain.opened()};
    }

    // --- Comparing.

    void compareAfterStep(Pair& changed) {
        compare(changed, chance_.oneIn(8));
        for (Pair& pair : pairs_)
            if (&pair != &changed && chance_.oneIn(3)) compare(pair, false);
        if (!chance_.oneIn(4)) {
            Pair loaded = reloaded(changed, chance_.oneIn(32));
            compareNames(changed, loaded);
            if (chance_.oneIn(32)) {
                loaded.set->inflateHuffman(changed.set->getTreeString());
                compare(loaded, true);
            }
            compareAndAdd(loaded, "loaded: ");
        } else {
            Pair image = opened(changed);
            if (chance_.oneIn(4)) compare(image, true);
            compareAndAdd(image, "opened: ");
        }
    }

    /// Also what is added to it, of which the set that it came from must see nothing.
    void compareAndAdd(Pair& pair, const char* how) {
        compare(pair, false);
        if (chance_.oneIn(2) && difference_.empty()) {
            addEntry(pair, chooseEntry(0));
            compare(pair, false);
        }
        if (!difference_.empty()) difference_.insert(0, how);
    }

    void compare(Pair& pair, bool isThorough) {
        if (!difference_.empty()) return;
        difference_ = differenceOf(*pair.set, pair.plain);
        if (!isThorough || !difference_.empty()) return;
        difference_ = differenceInTexts(*pair.set, pair.plain);
        if (difference_.empty()) difference_ = differenceInFinding(*pair.set, pair.plain);
    }

    /// Every name is the same after loading, where the form tells where the files of its entry are.
    void compareNames(Pair& pair, Pair& loaded) {
        const std::vector<PlainPathSet::Entry>& entries = pair.plain.entries();
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i].folder == pair.plain.trie().root) continue;
            const std::size_t end = entries[i].numbersEnd;
            for (std::size_t number = end - entries[i].numberCount + 1; number <= end; ++number)
                if (namesNumbered(*pair.set, number) != namesNumbered(*loaded.set, number))
                    return differ("a name after loading");
        }
    }

    /// The folder and the file; nothing where there is none.
    static std::vector<std::vector<Path>> namesNumbered(HuffmanPathTree& set, std::size_t number) {
        std::vector<Path> folders;
        std::vector<Path> files;
        try {
            set.getPath(folders, files, {static_cast<double>(number)});
        } catch (const InvalidFileNumberException&) {
            return {};
        }
        return {folders, files};
    }

    void differ(const std::string& what) {
        if (difference_.empty()) difference_ = what + " differs";
    }

    void say(const char* what, const ChosenEntry& entry = {}) {
        if (log_ == nullptr) return;
        *log_ << what << ' ' << describe({namesOf(entry.folder), namesOf(entry.files)}) << '\n';
    }

    static std::string describe(const TextEntry& entry) {
        std::string text;
        for (const std::u16string& name : entry.folder)
            text += std::string(name.begin(), name.end()) + '/';
        text += ':';
        for (const std::u16string& name : entry.files)
            text += ' ' + std::string(name.begin(), name.end());
        return text;
    }

    const NamePool& pool_;
    Chance chance_;
    std::ostream* log_;
    std::deque<std::vector<std::uint64_t>> images_;  // outlive the sets that stand on them
    std::vector<Pair> pairs_;
    std::string difference_;
};

std::string runHistory(const NamePool& pool, std::uint64_t seed, std::ostream* log) {
    try {
        return History(pool, seed, log).run();
    } catch (const std::exception& error) {
        return std::string("unexpected: ") + error.what();
    }
}

std::uint64_t numberFrom(const char* variable, std::uint64_t otherwise) {
    const char* const text = std::getenv(variable);
    return text == nullptr ? otherwise : std::strtoull(text, nullptr, 10);
}

TEST(PathSetHistories, giveWhatAPlainSetGives) {
    const NamePool pool;
    const std::uint64_t first = numberFrom("ZQ_FIRST_HISTORY", 1);
    const std::uint64_t count = numberFrom("ZQ_HISTORIES", kHistories);
    ASSERT_GT(count, 0U);
    for (std::uint64_t seed = first; seed < first + count; ++seed) {
        const std::string difference = runHistory(pool, seed, nullptr);
        if (difference.empty()) continue;
        std::ostringstream log;
        runHistory(pool, seed, &log);
        FAIL() << difference << " in the history of ZQ_FIRST_HISTORY=" << seed << ":\n"
               << log.str();
    }
}

}  // namespace
}  // namespace compressedpaths
