// Every operation while memory runs out, at each of the blocks that it asks for: the set is then as
// it was, and the same operation succeeds afterwards and gives what it should.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <ostream>
#include <span>
#include <streambuf>
#include <unordered_map>

#include "compressedpaths/CodedBatch.hpp"
#include "tests/support/FailingHeap.hpp"
#include "tests/support/PathSets.hpp"
#include "tests/support/Peers.hpp"
#include "tests/support/Tries.hpp"

namespace compressedpaths {
namespace {

using Peer = HuffmanPathTreePeer;
using Refused = FailingHeap::Refused;

constexpr std::size_t kMostBlocks = 10'000;  // an operation that asks for more does not end
constexpr std::array kWays{Refused::kOne, Refused::kAllAfter};

const TextEntries kEntries{{{u"a"}, {u"b", u"c"}},
                           {{}, {u"root"}},
                           {{u"a", u"b"}, {u"d"}},
                           {{u"a"}, {u"e", u"e"}},
                           {{u"f", u"g"}, {}}};
/// A folder met again, a file that becomes a folder, new folders, a folder of no components.
const TextEntries kMore{{{u"a"}, {u"x", u"y"}},
                        {{u"a", u"c", u"z"}, {u"w"}},
                        {{u"h", u"i"}, {std::u16string(200, u'a')}},
                        {{}, {u"v"}}};

template <class Act>
bool succeeds(const Act& act) {
    try {
        act();
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

/// Calls `prepare`, which gives what is acted on, then acts with one block after the other refused.
/// After each failure `requireUnchanged` looks at it, and the act succeeds when memory is there.
/// Returns how many blocks were refused in all.
template <class Prepare, class Act, class RequireUnchanged, class RequireDone>
std::size_t forEachBlock(Prepare prepare, Act act, RequireUnchanged requireUnchanged,
                         RequireDone requireDone) {
    std::size_t failures = 0;
    for (const Refused way : kWays) {
        for (std::size_t number = 1; number <= kMostBlocks; ++number) {
            SCOPED_TRACE(testing::Message() << "block " << number
                                            << (way == Refused::kOne ? "" : " and all after it"));
            auto subject = prepare();
            const auto step = [&] { act(*subject); };
            bool isDone = false;
            bool hasRefused = false;
            {
                const FailingHeap heap(number, way);
                isDone = succeeds(step);
                hasRefused = heap.hasRefused();
            }
            if (!isDone) {
                ++failures;
                requireUnchanged(*subject);
                EXPECT_TRUE(succeeds(step));
            }
            requireDone(*subject);
            if (testing::Test::HasFailure()) return failures;
            if (!hasRefused) break;
            EXPECT_LT(number, kMostBlocks);
        }
    }
    return failures;
}

// --- What a set is.

struct SetState {
    Bytes saved;
    std::vector<std::size_t> partitionEnds;
    std::vector<Track> folderTracks;
    std::map<std::size_t, Track> pathTracks;
    std::array<std::size_t, 5> counters;
    std::vector<Bytes> nodeStack;
    std::vector<Bytes> parentStack;
    Path currentPath;
    TextPaths names;
    std::u16string treeString;
    std::vector<double> frequencies;
    std::size_t nodeCount;
    std::size_t codeCount;

    bool operator==(const SetState&) const = default;
};

std::vector<Bytes> keysOf(BPathTree::NodeStack stack) {
    std::vector<Bytes> keys;
    for (; !stack.empty(); stack.pop()) keys.push_back(stack.top()->key);
    return keys;
}

SetState stateOf(HuffmanPathTree& set) {
    const auto walk = BPathTreePeer::linkedWalk(Peer::pathTree(set));
    const auto pathTracks = Peer::pathTracks(set);
    const std::vector<std::size_t> ends = Peer::partitionEnds(set);
    return {savedForm(set),
            ends,
            Peer::folderTracks(set),
            {pathTracks.begin(), pathTracks.end()},
            {Peer::maxFolderDepth(set), Peer::maxTrackLength(set), Peer::maxTrackKey(set),
             Peer::iterationPosition(set), Peer::pathCount(set)},
            keysOf(walk.nodeStack),
            keysOf(walk.parentStack),
            walk.currentPath,
            pathsByNumber(set, ends.empty() ? 0 : ends.back()),
            set.getTreeString(),
            set.getFrequencies(),
            Peer::nodes(set).size(),
            Peer::codes(set).size()};
}

std::unique_ptr<HuffmanPathTree> someSet() {
    auto set = std::make_unique<HuffmanPathTree>();
    buildSet(*set, kEntries);
    addSinglePath(*set, {u"s", u"t"});
    addSinglePath(*set, {u"a", u"b"});
    set->resetPathsToBTree();
    Path path;
    set->getNextPathFromBTree(path);
    return set;
}

/// A set, and what it was when the act began.
struct Subject {
    std::unique_ptr<HuffmanPathTree> set = someSet();
    SetState before = stateOf(*set);
};

/// `add` adds all of `added` to a set.
template <class Add>
void expectAddsAllOrNothing(Add add, const TextEntries& added) {
    const std::size_t failures = forEachBlock(
        [] { return std::make_unique<Subject>(); }, [&](Subject& subject) { add(*subject.set); },
        [](Subject& subject) { EXPECT_TRUE(stateOf(*subject.set) == subject.before); },
        [&](Subject& subject) {
            // The two single paths stand between, so that numbers are those of the entries after.
            const std::size_t start = Peer::partitionEnds(*subject.set).at(kEntries.size() - 1);
            EXPECT_EQ(pathsByNumber(*subject.set, start), pathsOf(kEntries));
            const auto ends = Peer::partitionEnds(*subject.set);
            ASSERT_EQ(ends.size(), kEntries.size() + added.size());
            EXPECT_EQ(ends.back(), start + 2 + pathsOf(added).size());
            std::size_t found = 0;
            for (const TextPath& path : walkedPaths(*subject.set))
                for (const TextPath& expected : pathsOf(added)) found += path == expected ? 1 : 0;
            EXPECT_EQ(found, pathsOf(added).size());
        });
    EXPECT_GT(failures, 0U);
}

std::vector<Path> codedLists(HuffmanPathTree& set, const TextEntries& entries, bool areFiles) {
    std::vector<Path> lists;
    for (const TextEntry& entry : entries) {
        Path& list = lists.emplace_back();
        for (const std::u16string& name : areFiles ? entry.files : entry.folder)
            list.push_back(set.generateCodeFor(name));
    }
    return lists;
}

// --- The code.

TEST(FailingAllocations, leaveASetWithoutACode) {
    const std::u16string characters = u"abcdefg";
    const std::vector<double> frequencies{1, 2, 3, 4, 5, 6, 7};
    HuffmanPathTree expected;
    expected.deflateHuffman(frequencies.data(), characters);
    const std::size_t failures = forEachBlock(
        [] { return std::make_unique<HuffmanPathTree>(); },
        [&](HuffmanPathTree& set) { set.deflateHuffman(frequencies.data(), characters); },
        [](HuffmanPathTree& set) {
            EXPECT_TRUE(set.getBoolTree().empty());
            EXPECT_TRUE(set.getTreeString().empty());
            EXPECT_TRUE(set.getFrequencies().empty());
            EXPECT_TRUE(Peer::nodes(set).empty());
            EXPECT_TRUE(Peer::codes(set).empty());
            EXPECT_THROW(set.generateCodeFor(u"a"), CodeNotFoundException);
        },
        [&](HuffmanPathTree& set) {
            EXPECT_EQ(set.getTreeString(), expected.getTreeString());
            EXPECT_EQ(set.generateCodeFor(u"abcdefg"), expected.generateCodeFor(u"abcdefg"));
            EXPECT_EQ(set.generatePathFrom(set.generateCodeFor(u"gag")), u"gag");
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocations, leaveASetWithoutACodeOfAMap) {
    const std::unordered_map<char16_t, double> frequencyOf{{u'a', 1}, {u'b', 2}, {u'c', 3}};
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<HuffmanPathTree>(); },
                     [&](HuffmanPathTree& set) { set.deflateHuffman(frequencyOf); },
                     [](HuffmanPathTree& set) {
                         EXPECT_TRUE(set.getBoolTree().empty());
                         EXPECT_TRUE(Peer::nodes(set).empty());
                         EXPECT_TRUE(Peer::codes(set).empty());
                     },
                     [](HuffmanPathTree& set) {
                         EXPECT_EQ(set.generatePathFrom(set.generateCodeFor(u"cab")), u"cab");
                     });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocations, leaveALoadedSetWithoutItsCharacters) {
    HuffmanPathTree source;
    buildSet(source, kEntries);
    const Bytes form = savedForm(source);
    const std::size_t failures = forEachBlock(
        [&] {
            auto set = std::make_unique<HuffmanPathTree>();
            Bytes bytes = form;
            set->deserialize(bytes, false);
            return set;
        },
        [&](HuffmanPathTree& set) { set.inflateHuffman(source.getTreeString()); },
        [&](HuffmanPathTree& set) {
            EXPECT_EQ(set.getBoolTree(), source.getBoolTree());
            EXPECT_TRUE(set.getTreeString().empty());
            EXPECT_TRUE(Peer::nodes(set).empty());
            EXPECT_TRUE(Peer::codes(set).empty());
            EXPECT_EQ(savedForm(set), form);
        },
        [](HuffmanPathTree& set) {
            EXPECT_EQ(pathsByNumber(set, pathsOf(kEntries).size()), pathsOf(kEntries));
            EXPECT_EQ(set.generatePathFrom(set.generateCodeFor(u"name")), u"name");
        });
    EXPECT_GT(failures, 0U);
}

// --- Adding.

TEST(FailingAllocations, addABatchOrNothingOfIt) {
    std::vector<Names> folders;
    std::vector<Names> files;
    for (const TextEntry& entry : kMore) {
        folders.push_back(entry.folder);
        files.push_back(entry.files);
    }
    expectAddsAllOrNothing(
        [&](HuffmanPathTree& set) { set.generateCodeAsyncAndAddPaths(folders, files); }, kMore);
}

TEST(FailingAllocations, addACodedBatchOrNothingOfIt) {
    HuffmanPathTree coder;
    makeCode(coder);
    CodedBatch batch(coder);
    for (const TextEntry& entry : kMore) {
        batch.beginEntry(0);
        for (const std::u16string& name : entry.folder) batch.appendFolder(name);
        for (const std::u16string& name : entry.files) batch.appendFile(name);
    }
    expectAddsAllOrNothing([&](HuffmanPathTree& set) { set.addCodedBatch(batch); }, kMore);
}

TEST(FailingAllocations, addAnEntryOrNothingOfIt) {
    for (const TextEntry& entry : kMore) {
        struct Adding : Subject {
            Path folder;
            std::vector<Bytes> files;
            Path givenFolder;
            std::vector<Bytes> givenFiles;
        };
        const std::size_t failures = forEachBlock(
            [&] {
                auto adding = std::make_unique<Adding>();
                adding->folder = codedLists(*adding->set, {entry}, false)[0];
                adding->files = codedLists(*adding->set, {entry}, true)[0];
                adding->givenFolder = adding->folder;
                adding->givenFiles = adding->files;
                adding->before = stateOf(*adding->set);
                return adding;
            },
            [](Adding& adding) { adding.set->addPathToBTree(adding.folder, adding.files); },
            [](Adding& adding) {
                EXPECT_TRUE(stateOf(*adding.set) == adding.before);
                EXPECT_EQ(adding.folder, adding.givenFolder);
                EXPECT_EQ(adding.files, adding.givenFiles);
            },
            [&](Adding& adding) {
                EXPECT_EQ(adding.files, std::vector<Bytes>(entry.files.size()));
                EXPECT_EQ(Peer::partitionEnds(*adding.set).size(), kEntries.size() + 1);
                const TextPaths walked = walkedPaths(*adding.set);
                for (const TextPath& path : pathsOf({entry}))
                    EXPECT_EQ(std::count(walked.begin(), walked.end(), path), 1);
            });
        EXPECT_GT(failures, 0U);
    }
}

TEST(FailingAllocations, addAPathOrNothingOfIt) {
    for (const TextPath& path : {TextPath{u"a", u"c", u"new", u"one"}, TextPath{u"a", u"b", u"d"},
                                 TextPath{u"z"}, TextPath{u"a", u"z"}}) {
        struct Adding : Subject {
            Path coded;
            Path given;
        };
        const bool isThere = path == TextPath{u"a", u"b", u"d"};
        forEachBlock(
            [&] {
                auto adding = std::make_unique<Adding>();
                adding->coded = codedLists(*adding->set, {{path, {}}}, false)[0];
                adding->given = adding->coded;
                adding->before = stateOf(*adding->set);
                return adding;
            },
            [](Adding& adding) { adding.set->addPathToBTree(adding.coded); },
            [](Adding& adding) {
                EXPECT_TRUE(stateOf(*adding.set) == adding.before);
                EXPECT_EQ(adding.coded, adding.given);
            },
            [&](Adding& adding) {
                const std::size_t number = adding.before.counters[4] + 1;
                EXPECT_EQ(Peer::pathCount(*adding.set), number);
                EXPECT_EQ(adding.set->hasDuplicate(number), isThere);
                const TextPaths walked = walkedPaths(*adding.set);
                EXPECT_EQ(std::count(walked.begin(), walked.end(), path), isThere ? 2 : 1);
            });
    }
}

TEST(FailingAllocations, takeACopyOrKeepWhatThereWas) {
    HuffmanPathTree other;
    buildSet(other, kMore);
    addSinglePath(other, {u"s"});
    addSinglePath(other, {u"s"});
    other.resetPathsToBTree();
    const SetState expected = stateOf(other);
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<Subject>(); },
                     [&](Subject& subject) { subject.set->copyTree(other); },
                     [](Subject& subject) { EXPECT_TRUE(stateOf(*subject.set) == subject.before); },
                     [&](Subject& subject) { EXPECT_TRUE(stateOf(*subject.set) == expected); });
    EXPECT_GT(failures, 0U);
    EXPECT_TRUE(stateOf(other) == expected);
}

// --- Fetching and walking.

TEST(FailingAllocations, fetchAllThatIsAskedForOrNothing) {
    struct Fetching : Subject {
        std::vector<Path> folders{path("f")};
        std::vector<Path> files{path("g")};
    };
    const std::vector<double> numbers{1, 2, 4, 5, 3, 1};
    const std::size_t failures = forEachBlock(
        [] { return std::make_unique<Fetching>(); },
        [&](Fetching& subject) { subject.set->getPath(subject.folders, subject.files, numbers); },
        [](Fetching& subject) {
            EXPECT_TRUE(stateOf(*subject.set) == subject.before);
            EXPECT_EQ(subject.folders, (std::vector<Path>{path("f")}));
            EXPECT_EQ(subject.files, (std::vector<Path>{path("g")}));
        },
        [&](Fetching& subject) {
            subject.folders.erase(subject.folders.begin());
            subject.files.erase(subject.files.begin());
            TextPaths paths;
            for (std::size_t group = 0; group < subject.files.size(); ++group) {
                for (const Bytes& file : subject.files[group]) {
                    paths.push_back(decoded(*subject.set, subject.folders.at(group)));
                    paths.back().push_back(subject.set->generatePathFrom(file));
                }
            }
            const TextPaths all = pathsOf(kEntries);
            EXPECT_EQ(paths, (TextPaths{all[0], all[1], all[3], all[4], all[2], all[0]}));
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocations, startAWalkOrLeaveTheOneThereWas) {
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<Subject>(); },
                     [](Subject& subject) { subject.set->resetPathsToBTree(); },
                     [](Subject& subject) { EXPECT_TRUE(stateOf(*subject.set) == subject.before); },
                     [](Subject& subject) {
                         EXPECT_EQ(Peer::iterationPosition(*subject.set), 0U);
                         Path first;
                         subject.set->getNextPathFromBTree(first);
                         EXPECT_EQ(decoded(*subject.set, first), (TextPath{u"a", u"b", u"d"}));
                     });
    // A walk may begin in room that it has.
    EXPECT_LE(failures, kMostBlocks);
}

TEST(FailingAllocations, stepOnOrStandStill) {
    const TextPaths all = walkedPaths(*someSet());
    for (std::size_t step = 0; step < all.size(); ++step) {
        struct Walking : Subject {
            Path out{{7}};
        };
        forEachBlock(
            [&] {
                auto walking = std::make_unique<Walking>();
                walking->set->resetPathsToBTree();
                for (std::size_t i = 0; i < step; ++i) {
                    Path path;
                    walking->set->getNextPathFromBTree(path);
                }
                walking->before = stateOf(*walking->set);
                return walking;
            },
            [](Walking& walking) { walking.set->getNextPathFromBTree(walking.out); },
            [](Walking& walking) {
                EXPECT_TRUE(stateOf(*walking.set) == walking.before);
                EXPECT_EQ(walking.out, (Path{{7}}));
            },
            [&](Walking& walking) {
                if (walking.out[0] == Bytes{7}) walking.out.erase(walking.out.begin());
                EXPECT_EQ(decoded(*walking.set, walking.out), all[step]);
                EXPECT_EQ(Peer::iterationPosition(*walking.set), step + 1);
            });
    }
}

TEST(FailingAllocations, appendAWholeTextOrNothing) {
    const TextPaths all = pathsOf(kEntries);
    for (std::size_t number = 1; number <= all.size(); ++number) {
        struct Reading : Subject {
            std::string bytes = "-";
            std::u16string units = u"-";
        };
        forEachBlock([] { return std::make_unique<Reading>(); },
                     [&](Reading& reading) {
                         if (reading.bytes == "-")
                             reading.set->appendText(number, "/", reading.bytes);
                         reading.set->appendText(number, u"/", reading.units);
                     },
                     [](Reading& reading) {
                         EXPECT_TRUE(stateOf(*reading.set) == reading.before);
                         EXPECT_EQ(reading.units, u"-");
                     },
                     [&](Reading& reading) {
                         std::u16string expected = u"-" + all[number - 1][0];
                         for (std::size_t i = 1; i < all[number - 1].size(); ++i)
                             expected += (i > 1 ? u"/" : u"") + all[number - 1][i];
                         EXPECT_EQ(reading.units, expected);
                         EXPECT_EQ(reading.bytes, std::string(expected.begin(), expected.end()));
                     });
    }
}

TEST(FailingAllocations, findWhatIsThereOrSayThatTheyCouldNot) {
    struct Finding : Subject {
        std::optional<FolderId> folder;
        std::optional<std::size_t> number;
        std::vector<FolderId> inside;
        std::size_t entries = 0;
    };
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<Finding>(); },
                     [](Finding& finding) {
                         finding.folder = finding.set->folderOf({u"a", u"b"});
                         finding.number = finding.set->numberOf(*finding.folder, u"d");
                         finding.inside = finding.set->foldersIn(*finding.set->folderOf({u"a"}));
                         finding.entries = finding.set->entriesOf(*finding.folder).size();
                     },
                     [](Finding& finding) { EXPECT_TRUE(stateOf(*finding.set) == finding.before); },
                     [](Finding& finding) {
                         EXPECT_EQ(finding.number, 4U);
                         EXPECT_EQ(finding.inside, (std::vector<FolderId>{*finding.folder}));
                         EXPECT_EQ(finding.entries, 1U);
                     });
    EXPECT_GT(failures, 0U);
}

// --- Saving and loading.

TEST(FailingAllocations, saveAWholeSetOrNothing) {
    for (const bool compress : {false, true}) {
        struct Saving : Subject {
            Bytes out{1, 2, 3};
        };
        Bytes expected{1, 2, 3};
        someSet()->serialize(expected, compress);
        const std::size_t failures =
            forEachBlock([] { return std::make_unique<Saving>(); },
                         [&](Saving& saving) { saving.set->serialize(saving.out, compress); },
                         [](Saving& saving) {
                             EXPECT_TRUE(stateOf(*saving.set) == saving.before);
                             EXPECT_EQ(saving.out, (Bytes{1, 2, 3}));
                         },
                         [&](Saving& saving) { EXPECT_EQ(saving.out, expected); });
        EXPECT_GT(failures, 0U);
    }
}

/// What was read up to there stays: it can be walked, asked and saved.
void expectHarmless(HuffmanPathTree& set) {
    for (set.resetPathsToBTree(); set.hasNextPathFromBTree();) {
        Path path;
        set.getNextPathFromBTree(path);
        ASSERT_FALSE(path.empty());
    }
    for (std::size_t number = 1; number <= Peer::pathCount(set); ++number) {
        std::vector<Path> folders;
        std::vector<Path> files;
        try {
            set.getPath(folders, files, {static_cast<double>(number)});
        } catch (const std::exception&) {
            EXPECT_TRUE(folders.empty() && files.empty());
        }
    }
    HuffmanPathTree again;
    Bytes bytes = savedForm(set);
    again.deserialize(bytes, false);
    std::vector<std::size_t> track;
    Path components = path("xy");
    Peer::pathTree(set).addPath(components, track);
}

TEST(FailingAllocations, loadASetOrAHarmlessPartOfIt) {
    const std::unique_ptr<HuffmanPathTree> source = someSet();
    for (const bool compressed : {false, true}) {
        const Bytes form = savedForm(*source, compressed);
        std::size_t failures = 0;
        for (const Refused way : kWays) {
            bool hasRefused = true;
            for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
                SCOPED_TRACE(number);
                Bytes bytes = form;
                HuffmanPathTree set;
                bool isDone = false;
                {
                    const FailingHeap heap(number, way);
                    isDone = succeeds([&] { set.deserialize(bytes, compressed); });
                    hasRefused = heap.hasRefused();
                }
                EXPECT_EQ(bytes, form);
                if (isDone) {
                    EXPECT_EQ(savedForm(set), savedForm(*source));
                } else {
                    ++failures;
                    expectHarmless(set);
                }
            }
            EXPECT_FALSE(hasRefused);
        }
        EXPECT_GT(failures, 0U);
    }
}

// --- Images.

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

// --- The trie by itself.

struct Trie {
    Trie() {
        for (const char* letters : {"ab", "acd", "e"}) addSingle(tree, path(letters));
        tree.reset();
        Path first;
        tree.getNextPath(first);
        before = state();
    }

    struct State {
        Bytes structure;
        std::vector<Bytes> keys;
        std::vector<Bytes> nodeStack;
        std::vector<Bytes> parentStack;
        Path currentPath;
        bool operator==(const State&) const = default;
    };
    State state() {
        State now;
        tree.serialize(now.structure, now.keys);
        const auto walk = BPathTreePeer::linkedWalk(tree);
        now.nodeStack = keysOf(walk.nodeStack);
        now.parentStack = keysOf(walk.parentStack);
        now.currentPath = walk.currentPath;
        return now;
    }

    BPathTree tree;
    State before;
    Path components = path("acxy");
    std::vector<Bytes> files{key('m'), key('n')};
    Track track{9};
    std::size_t prior = 77;
    Path next = path("kept");
    Bytes structure{5};
    std::vector<Bytes> keys{key('k')};
};

void expectUntouched(Trie& trie) {
    EXPECT_TRUE(trie.state() == trie.before);
    EXPECT_EQ(trie.components, path("acxy"));
    EXPECT_EQ(trie.files, path("mn"));
    EXPECT_EQ(trie.track, (Track{9}));
    EXPECT_EQ(trie.next, path("kept"));
    EXPECT_EQ(trie.structure, (Bytes{5}));
    EXPECT_EQ(trie.keys, path("k"));
}

std::unique_ptr<Trie> someTrie() {
    return std::make_unique<Trie>();
}

TEST(FailingAllocationsOfATrie, addAPathOrNothingOfIt) {
    const std::size_t failures = forEachBlock(
        someTrie, [](Trie& trie) { EXPECT_FALSE(trie.tree.addPath(trie.components, trie.track)); },
        expectUntouched,
        [](Trie& trie) {
            EXPECT_EQ(trie.track, (Track{9, 0, 1}));
            EXPECT_EQ(walked(trie.tree),
                      (std::vector<Path>{path("ab"), path("acd"), path("acxy"), path("e")}));
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocationsOfATrie, addAFolderOrNothingOfIt) {
    const std::size_t failures = forEachBlock(
        someTrie,
        [](Trie& trie) {
            EXPECT_FALSE(trie.tree.addPath(trie.components, trie.files, trie.track, trie.prior));
        },
        expectUntouched,
        [](Trie& trie) {
            EXPECT_EQ(trie.track, (Track{9, 0, 1, 1, 0}));
            EXPECT_EQ(walked(trie.tree), (std::vector<Path>{path("ab"), path("acd"), path("acxym"),
                                                            path("acxyn"), path("e")}));
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocationsOfATrie, stepOnOrStandStill) {
    const std::size_t failures = forEachBlock(
        someTrie, [](Trie& trie) { trie.tree.getNextPath(trie.next); }, expectUntouched,
        [](Trie& trie) { EXPECT_EQ(trie.next, path("acd")); });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocationsOfATrie, startAWalkOrLeaveTheOneThereWas) {
    forEachBlock(
        someTrie, [](Trie& trie) { trie.tree.reset(); }, expectUntouched,
        [](Trie& trie) {
            Path first;
            trie.tree.getNextPath(first);
            EXPECT_EQ(first, path("ab"));
        });
}

TEST(FailingAllocationsOfATrie, flattenAllOrNothing) {
    const std::size_t failures = forEachBlock(
        someTrie, [](Trie& trie) { trie.tree.serialize(trie.structure, trie.keys); },
        expectUntouched,
        [](Trie& trie) {
            EXPECT_EQ(trie.structure, (Bytes{5, 3, 2, 1, 0, 0}));
            EXPECT_EQ(trie.keys, path("kabcde"));
        });
    EXPECT_GT(failures, 0U);
}

TEST(FailingAllocationsOfATrie, areRebuiltOrHarmless) {
    for (const Refused way : kWays) {
        bool hasRefused = true;
        for (std::size_t number = 1; hasRefused && number < kMostBlocks; ++number) {
            SCOPED_TRACE(number);
            BPathTree tree;
            Bytes structure{3, 2, 1, 0, 0};
            std::vector<Bytes> keys = path("abcde");
            bool isDone = false;
            {
                const FailingHeap heap(number, way);
                isDone = succeeds([&] { tree.deserialize(structure, keys); });
                hasRefused = heap.hasRefused();
            }
            const std::vector<Path> all{path("ab"), path("acd"), path("e")};
            if (isDone) {
                EXPECT_EQ(walked(tree), all);
            } else {
                EXPECT_LE(walked(tree).size(), all.size());
                addSingle(tree, path("zz"));
                EXPECT_EQ(walked(tree).back(), path("zz"));
            }
        }
        EXPECT_FALSE(hasRefused);
    }
}

TEST(FailingAllocationsOfATrie, copyATrieOrThrow) {
    struct Copying : Trie {
        std::unique_ptr<BPathTree> copy;
    };
    const std::size_t failures =
        forEachBlock([] { return std::make_unique<Copying>(); },
                     [](Copying& trie) { trie.copy = std::make_unique<BPathTree>(trie.tree); },
                     [](Copying& trie) {
                         EXPECT_TRUE(trie.state() == trie.before);
                         EXPECT_EQ(trie.copy, nullptr);
                     },
                     [](Copying& trie) {
                         Path next;
                         trie.copy->getNextPath(next);
                         EXPECT_EQ(next, path("acd"));
                     });
    EXPECT_GT(failures, 0U);
}

// --- The heap itself.

TEST(FailingHeap, refusesTheOneBlockOrAllAfterIt) {
    for (const Refused way : kWays) {
        std::array<void*, 4> blocks{};
        {
            const FailingHeap heap(2, way);
            blocks[0] = std::malloc(8);
            blocks[1] = std::realloc(nullptr, 8);
            blocks[2] = std::calloc(1, 8);
            blocks[3] = std::aligned_alloc(64, 64);
            EXPECT_TRUE(heap.hasRefused());
        }
        EXPECT_NE(blocks[0], nullptr);
        EXPECT_EQ(blocks[1], nullptr);
        EXPECT_EQ(blocks[2] == nullptr, way == Refused::kAllAfter);
        EXPECT_EQ(blocks[3] == nullptr, way == Refused::kAllAfter);
        for (void* const block : blocks) std::free(block);
    }
    const FailingHeap heap(1, Refused::kOne);
    EXPECT_FALSE(succeeds([] { Bytes(1000); }));
}

}  // namespace
}  // namespace compressedpaths
