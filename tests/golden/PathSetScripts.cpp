// Scripts of operations on numbered path sets.

#include <memory>

#include "compressedpaths/HuffmanPathTree.hpp"
#include "tests/golden/GoldenRecords.hpp"
#include "tests/golden/SavedForms.hpp"
#include "tests/golden/Sha256.hpp"
#include "tests/golden/Throwing.hpp"
#include "tests/golden/TrieRows.hpp"
#include "tests/support/Peers.hpp"

namespace compressedpaths::golden {
namespace {

using Peer = HuffmanPathTreePeer;

struct Batch {
    std::vector<std::vector<std::u16string>> folders;
    std::vector<std::vector<std::u16string>> files;
};

Batch batchOf(const Json& entries) {
    if (!entries.IsArray()) throw UnreadableRecord("not a list of entries");
    Batch batch;
    for (const Json& value : entries.GetArray()) {
        Fields entry(value);
        const Json* const times = entry.find("times");
        const std::uint64_t count = times == nullptr ? 1 : integerOf(*times);
        batch.folders.insert(batch.folders.end(), count, namesOf(entry["folder"]));
        batch.files.insert(batch.files.end(), count, namesOf(entry["files"]));
        entry.requireAllRead();
    }
    return batch;
}

Counters countersOf(const HuffmanPathTree& set) {
    return {{"maxFolderDepth", Peer::maxFolderDepth(set)},
            {"maxTrackLength", Peer::maxTrackLength(set)},
            {"maxCodeBytes", Peer::maxCodeBytes(set)},
            {"maxTrackKey", Peer::maxTrackKey(set)},
            {"iterationPosition", Peer::iterationPosition(set)},
            {"pathCount", Peer::pathCount(set)}};
}

std::map<std::size_t, Track> recordedPathTracks(const Json& rows) {
    if (!rows.IsArray()) throw UnreadableRecord("not a list of tracks");
    std::map<std::size_t, Track> tracks;
    for (const Json& row : rows.GetArray()) {
        if (!row.IsArray() || row.Size() != 2) throw UnreadableRecord("not a row of two");
        if (!tracks.emplace(integerOf(row[0]), trackOf(row[1])).second)
            throw UnreadableRecord("two tracks of a path");
    }
    return tracks;
}

class PathSetScript {
public:
    void create(Fields& step) { newSet(step); }
    void drop(Fields& step) {
        set(step);
        sets_.erase(integerOf(step["set"]));
    }
    void copy(Fields& step);

    void build(Fields& step);
    void batch(Fields& step);
    void single(Fields& step);
    void asyncSizes(Fields& step) { expectAsyncSizes(set(step), step); }
    void state(Fields& step);
    void hasDuplicate(Fields& step) {
        EXPECT_EQ(set(step).hasDuplicate(integerOf(step["number"])), flagOf(step["result"]));
    }
    void getPath(Fields& step);

    void reset(Fields& step) { set(step).resetPathsToBTree(); }
    void hasNext(Fields& step) {
        EXPECT_EQ(set(step).hasNextPathFromBTree(), flagOf(step["result"]));
    }
    void next(Fields& step);
    void walk(Fields& step);
    void walkDigest(Fields& step);

    void serialize(Fields& step) { expectSavedForms(set(step), step); }
    void restore(Fields& step);
    void restoreBytes(Fields& step);
    void truncatedForm(Fields& step) { expectLosslessForm(set(step), step); }

    void inflate(Fields& step) { set(step).inflateHuffman(unitsOf(step["tree_string"])); }
    void boolTree(Fields& step) {
        EXPECT_EQ(bitTextOf(set(step).getBoolTree()), textOf(step["result"]));
    }
    void code(Fields& step);
    void decode(Fields& step) {
        EXPECT_EQ(set(step).generatePathFrom(bytesOf(step["code"])), unitsOf(step["text"]));
    }

private:
    HuffmanPathTree& set(Fields& step) { return *sets_.at(integerOf(step["set"])); }
    HuffmanPathTree& newSet(Fields& step) {
        return *(sets_[integerOf(step["set"])] = std::make_unique<HuffmanPathTree>());
    }
    static void expectAsyncSizes(const HuffmanPathTree& set, Fields& step);

    /// Resets the walk, then calls `visit` with each path.
    template <class Visit>
    static void forEachPath(HuffmanPathTree& set, Visit visit) {
        for (set.resetPathsToBTree(); set.hasNextPathFromBTree();) {
            Path path;
            set.getNextPathFromBTree(path);
            visit(path);
        }
    }

    std::map<std::uint64_t, std::unique_ptr<HuffmanPathTree>> sets_;
};

void PathSetScript::copy(Fields& step) {
    const HuffmanPathTree& source = *sets_.at(integerOf(step["from"]));
    const std::uint64_t number = integerOf(step["set"]);
    if (!sets_.contains(number)) newSet(step);
    sets_.at(number)->copyTree(source);
}

void PathSetScript::build(Fields& step) {
    const std::u16string characters = charactersOf(step["chars"]);
    const std::vector<double> frequencies = frequenciesOf(step["frequencies"]);
    ASSERT_EQ(characters.size(), frequencies.size());
    set(step).deflateHuffman(frequencies.data(), characters);
}

void PathSetScript::expectAsyncSizes(const HuffmanPathTree& set, Fields& step) {
    EXPECT_EQ((Track{Peer::asyncFolders(set).size(), Peer::asyncFiles(set).size(),
                     Peer::asyncCodedFolders(set).size(), Peer::asyncCodedFiles(set).size()}),
              trackOf(step["async_sizes"]));
}

void PathSetScript::batch(Fields& step) {
    HuffmanPathTree& target = set(step);
    Batch batch = batchOf(step["entries"]);
    EXPECT_EQ(thrownBy([&] { target.generateCodeAsyncAndAddPaths(batch.folders, batch.files); }),
              recordedThrow(step));
    expectAsyncSizes(target, step);
}

void PathSetScript::single(Fields& step) {
    HuffmanPathTree& target = set(step);
    Path codedPath;
    for (const std::u16string& component : namesOf(step["path"]))
        codedPath.push_back(target.generateCodeFor(component));
    target.addPathToBTree(codedPath);
    const std::uint64_t number = integerOf(step["number"]);
    EXPECT_EQ(Peer::pathCount(target), number);
    EXPECT_EQ(target.hasDuplicate(number), flagOf(step["duplicate"]));
}

void PathSetScript::state(Fields& step) {
    const HuffmanPathTree& target = set(step);
    EXPECT_EQ(countersOf(target), recordedCounters(step["counters"]));
    if (const Json* value = step.find("partition_ends")) {
        EXPECT_EQ(Peer::partitionEnds(target), trackOf(*value));
    }
    if (const Json* value = step.find("folder_tracks")) {
        EXPECT_EQ(Peer::folderTracks(target), tracksOf(*value));
    }
    if (const Json* value = step.find("path_tracks")) {
        const auto tracks = Peer::pathTracks(target);
        EXPECT_EQ((std::map<std::size_t, Track>(tracks.begin(), tracks.end())),
                  recordedPathTracks(*value));
    }
    if (const Json* value = step.find("tree")) {
        EXPECT_EQ(rowsOf(Peer::pathTree(target)), recordedRows(*value));
    }
}

void PathSetScript::getPath(Fields& step) {
    std::vector<Path> folders = step.orEmpty("folders_before", pathsOf);
    std::vector<Path> files = step.orEmpty("files_before", pathsOf);
    const Track numbers = trackOf(step["requested"]);
    set(step).getPath(folders, files, {numbers.begin(), numbers.end()});
    EXPECT_EQ(hexOf(folders), textListsOf(step["folders"]));
    EXPECT_EQ(hexOf(files), textListsOf(step["files"]));
}

void PathSetScript::next(Fields& step) {
    HuffmanPathTree& target = set(step);
    Path path = step.orEmpty("before", pathOf);
    EXPECT_EQ(thrownBy([&] { target.getNextPathFromBTree(path); }), recordedThrow(step));
    EXPECT_EQ(hexOf(path), textsOf(step["path"]));
}

void PathSetScript::walk(Fields& step) {
    std::vector<Texts> paths;
    forEachPath(set(step), [&paths](const Path& path) { paths.push_back(hexOf(path)); });
    EXPECT_EQ(paths, textListsOf(step["paths"]));
}

void PathSetScript::walkDigest(Fields& step) {
    std::uint64_t count = 0;
    Sha256 digest;
    forEachPath(set(step), [&](const Path& path) {
        ++count;
        digest.update(std::uint64_t{path.size()});
        for (const Bytes& component : path) {
            digest.update(std::uint64_t{component.size()});
            digest.update(std::span<const std::uint8_t>(component));
        }
    });
    EXPECT_EQ(count, integerOf(step["count"]));
    EXPECT_EQ(digest.finish(), textOf(step["sha256"]));
}

void PathSetScript::restore(Fields& step) {
    const bool compressed = flagOf(step["compressed"]);
    Bytes form;
    sets_.at(integerOf(step["from"]))->serialize(form, compressed);
    newSet(step).deserialize(form, compressed);
}

void PathSetScript::restoreBytes(Fields& step) {
    Bytes form = bytesOf(step["bytes"]);
    const bool compressed = flagOf(step["compressed"]);
    HuffmanPathTree& target = newSet(step);
    EXPECT_EQ(thrownBy([&] { target.deserialize(form, compressed); }), recordedThrow(step));
}

void PathSetScript::code(Fields& step) {
    HuffmanPathTree& target = set(step);
    const std::u16string text = unitsOf(step["text"]);
    const auto expected = recordedThrow(step);
    Bytes code;
    EXPECT_EQ(thrownBy([&] { code = target.generateCodeFor(text); }), expected);
    if (!expected) {
        EXPECT_EQ(hexOf(code), textOf(step["code"]));
    }
}

void runPathSetScript(Fields& record) {
    runSteps<PathSetScript>(record["steps"], {{"new", &PathSetScript::create},
                                              {"drop", &PathSetScript::drop},
                                              {"copy", &PathSetScript::copy},
                                              {"build", &PathSetScript::build},
                                              {"batch", &PathSetScript::batch},
                                              {"single", &PathSetScript::single},
                                              {"async_sizes", &PathSetScript::asyncSizes},
                                              {"state", &PathSetScript::state},
                                              {"has_duplicate", &PathSetScript::hasDuplicate},
                                              {"get_path", &PathSetScript::getPath},
                                              {"reset", &PathSetScript::reset},
                                              {"has_next", &PathSetScript::hasNext},
                                              {"next", &PathSetScript::next},
                                              {"walk", &PathSetScript::walk},
                                              {"walk_digest", &PathSetScript::walkDigest},
                                              {"serialize", &PathSetScript::serialize},
                                              {"restore", &PathSetScript::restore},
                                              {"restore_bytes", &PathSetScript::restoreBytes},
                                              {"truncated_form", &PathSetScript::truncatedForm},
                                              {"inflate", &PathSetScript::inflate},
                                              {"bool_tree", &PathSetScript::boolTree},
                                              {"code", &PathSetScript::code},
                                              {"decode", &PathSetScript::decode}});
}

/// A script with a remark on what a form would lose; "note" and "lost" are there for the reader.
void runTruncation(Fields& record) {
    SCOPED_TRACE(textOf(record["note"]) + " Lost: " + textOf(record["lost"]));
    runPathSetScript(record);
}

}  // namespace

RecordKinds pathSetKinds() {
    return {{"pathset", runPathSetScript},
            {"serialize_forms", runPathSetScript},
            {"truncation", runTruncation}};
}

}  // namespace compressedpaths::golden
